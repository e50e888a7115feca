#include "typelibrary_reader.h"

#include <stdexcept>

namespace typelibrary {

namespace {

using Microsoft::WRL::ComPtr;

void Must(HRESULT result, const char* what) {
    if (FAILED(result))
        throw std::runtime_error(std::string(what) + " failed");
}

std::string Narrow(BSTR text) {
    std::string narrow;
    for (UINT i = 0; i < SysStringLen(text); ++i)
        narrow += static_cast<char>(text[i]);
    return narrow;
}

// Takes the string over.
std::string Taken(BSTR text) {
    const std::string taken = Narrow(text);
    SysFreeString(text);
    return taken;
}

std::string HelpOf(ITypeInfo* type, MEMBERID number) {
    BSTR help = nullptr;
    Must(type->GetDocumentation(number, nullptr, &help, nullptr, nullptr), "GetDocumentation");
    return Taken(help);
}

// The library's structures, given back at the end.
class Attributes {
  public:
    explicit Attributes(ITypeInfo* type) : type_(type) {
        Must(type->GetTypeAttr(&attributes_), "GetTypeAttr");
    }
    ~Attributes() { type_->ReleaseTypeAttr(attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    const TYPEATTR* operator->() const { return attributes_; }

  private:
    ITypeInfo* type_;
    TYPEATTR* attributes_ = nullptr;
};

class FunctionAt {
  public:
    FunctionAt(ITypeInfo* type, UINT index) : type_(type) {
        Must(type->GetFuncDesc(index, &function_), "GetFuncDesc");
    }
    ~FunctionAt() { type_->ReleaseFuncDesc(function_); }
    FunctionAt(const FunctionAt&) = delete;
    FunctionAt& operator=(const FunctionAt&) = delete;
    const FUNCDESC* operator->() const { return function_; }

  private:
    ITypeInfo* type_;
    FUNCDESC* function_ = nullptr;
};

class VariableAt {
  public:
    VariableAt(ITypeInfo* type, UINT index) : type_(type) {
        Must(type->GetVarDesc(index, &variable_), "GetVarDesc");
    }
    ~VariableAt() { type_->ReleaseVarDesc(variable_); }
    VariableAt(const VariableAt&) = delete;
    VariableAt& operator=(const VariableAt&) = delete;
    const VARDESC* operator->() const { return variable_; }

  private:
    ITypeInfo* type_;
    VARDESC* variable_ = nullptr;
};

std::string TypeName(ITypeInfo* home, const TYPEDESC& type) {
    static const std::map<VARTYPE, const char*> plain = {
        {VT_I2, "short"},          {VT_I4, "long"},
        {VT_R4, "float"},          {VT_BSTR, "BSTR"},
        {VT_VOID, "void"},         {VT_HRESULT, "HRESULT"},
        {VT_BOOL, "VARIANT_BOOL"}, {VT_VARIANT, "VARIANT"},
        {VT_UNKNOWN, "IUnknown*"}, {VT_DISPATCH, "IDispatch*"},
    };
    if (type.vt == VT_PTR)
        return TypeName(home, *type.lptdesc) + "*";
    if (type.vt == VT_USERDEFINED) {
        TypeInfo named;
        Must(home->GetRefTypeInfo(type.hreftype, &named), "GetRefTypeInfo");
        return NameOf(named.Get());
    }
    const auto found = plain.find(type.vt);
    return found == plain.end() ? "type " + std::to_string(type.vt) : found->second;
}

bool IsResult(const ELEMDESC& argument) {
    return (argument.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
}

std::string Direction(const ELEMDESC& argument) {
    static const std::map<USHORT, const char*> directions = {
        {PARAMFLAG_FIN, ""},
        {PARAMFLAG_FIN | PARAMFLAG_FOPT, "optional "},
        {PARAMFLAG_FIN | PARAMFLAG_FOUT, "inout "},
    };
    const auto found = directions.find(argument.paramdesc.wParamFlags);
    return found == directions.end() ? "flags " + std::to_string(argument.paramdesc.wParamFlags) + " "
                                     : found->second;
}

// The function's name and those of its arguments; the value that a property is set to has none.
std::vector<std::string> Names(ITypeInfo* type, const FUNCDESC& function) {
    std::vector<BSTR> raw(static_cast<size_t>(function.cParams) + 1);
    UINT count = 0;
    Must(type->GetNames(function.memid, raw.data(), static_cast<UINT>(raw.size()), &count), "GetNames");
    std::vector<std::string> names;
    for (UINT i = 0; i < count; ++i)
        names.push_back(Taken(raw[i]));
    names.resize(raw.size());
    return names;
}

std::string Marks(WORD flags) {
    static const std::pair<WORD, const char*> known[] = {
        {FUNCFLAG_FRESTRICTED, " restricted"},
        {FUNCFLAG_FHIDDEN, " hidden"},
        {FUNCFLAG_FNONBROWSABLE, " nonbrowsable"},
    };
    std::string marks;
    for (const auto& [flag, text] : known) {
        if (flags & flag)
            marks += text;
        flags = static_cast<WORD>(flags & ~flag);
    }
    return flags ? marks + " flags " + std::to_string(flags) : marks;
}

const char* KindName(INVOKEKIND kind) {
    static const std::map<INVOKEKIND, const char*> names = {{INVOKE_FUNC, "call"},
                                                            {INVOKE_PROPERTYGET, "get"},
                                                            {INVOKE_PROPERTYPUT, "put"},
                                                            {INVOKE_PROPERTYPUTREF, "putref"}};
    return names.at(kind);
}

bool Sets(const FUNCDESC& function) {
    return function.invkind == INVOKE_PROPERTYPUT || function.invkind == INVOKE_PROPERTYPUTREF;
}

// The type of what a function gives or a property is set to, in whichever way its kind of interface says it.
std::string ResultType(ITypeInfo* type, const FUNCDESC& function) {
    const ELEMDESC* last = function.cParams ? &function.lprgelemdescParam[function.cParams - 1] : nullptr;
    if (last && IsResult(*last))
        return TypeName(type, *last->tdesc.lptdesc);
    if (last && Sets(function))
        return TypeName(type, last->tdesc);
    const std::string result = TypeName(type, function.elemdescFunc.tdesc);
    return result == "HRESULT" ? "void" : result;
}

std::string Arguments(ITypeInfo* type, const FUNCDESC& function, const std::vector<std::string>& names) {
    std::string text;
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& argument = function.lprgelemdescParam[i];
        const bool isValue = Sets(function) && i == function.cParams - 1;
        if (isValue || IsResult(argument))
            continue;
        text += (text.empty() ? "" : ", ") + Direction(argument) + TypeName(type, argument.tdesc) + " " +
                names[static_cast<size_t>(i) + 1];
    }
    return text;
}

Function Describe(ITypeInfo* type, const FUNCDESC& function) {
    const std::vector<std::string> names = Names(type, function);
    Function described;
    described.number = function.memid;
    described.kind = function.invkind;
    described.name = names[0];
    described.help = HelpOf(type, function.memid);
    described.slot = static_cast<int>(function.oVft) / static_cast<int>(sizeof(void*));
    described.line = std::to_string(function.memid) + " " + KindName(function.invkind) + " " + names[0] +
                     "(" + Arguments(type, function, names) + ") " + ResultType(type, function) +
                     Marks(function.wFuncFlags);
    return described;
}

std::string KindOfType(ITypeInfo* type) {
    const Attributes attributes(type);
    static const std::map<TYPEKIND, const char*> kinds = {
        {TKIND_ENUM, "enum"}, {TKIND_DISPATCH, "dispinterface"}, {TKIND_COCLASS, "coclass"}};
    if (attributes->typekind == TKIND_DISPATCH && (attributes->wTypeFlags & TYPEFLAG_FDUAL))
        return "dual";
    const auto found = kinds.find(attributes->typekind);
    return found == kinds.end() ? "kind " + std::to_string(attributes->typekind) : found->second;
}

std::string IdentifierOf(ITypeInfo* type) {
    const Attributes attributes(type);
    wchar_t text[40] = {};
    StringFromGUID2(attributes->guid, text, 40);
    std::string narrow;
    for (const wchar_t* next = text; *next; ++next)
        narrow += static_cast<char>(*next);
    return narrow.substr(1, narrow.size() - 2);
}

} // namespace

Library::Library(const wchar_t* path) {
    Must(LoadTypeLib(path, &library_), "LoadTypeLib");
}

std::vector<Type> Library::Types() const {
    std::vector<Type> types;
    for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
        TypeInfo type;
        Must(library_->GetTypeInfo(i, &type), "GetTypeInfo");
        types.push_back({KindOfType(type.Get()) + " " + NameOf(type.Get()), IdentifierOf(type.Get()),
                         HelpOf(type.Get(), MEMBERID_NIL), type});
    }
    return types;
}

TypeInfo Library::Find(const char* name) const {
    for (const Type& type : Types()) {
        if (NameOf(type.info.Get()) == name)
            return type.info;
    }
    throw std::runtime_error(std::string("no type ") + name);
}

WORD Flags(ITypeInfo* type) {
    return Attributes(type)->wTypeFlags;
}

std::string NameOf(ITypeInfo* type) {
    BSTR name = nullptr;
    Must(type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), "GetDocumentation");
    return Taken(name);
}

TypeInfo VirtualFace(ITypeInfo* dual) {
    HREFTYPE reference = 0;
    TypeInfo face;
    Must(dual->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), "GetRefTypeOfImplType");
    Must(dual->GetRefTypeInfo(reference, &face), "GetRefTypeInfo");
    return face;
}

std::vector<Function> Functions(ITypeInfo* type) {
    constexpr MEMBERID firstOfIDispatch = 0x60000000;
    const Attributes attributes(type);
    std::vector<Function> functions;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        const FunctionAt function(type, i);
        if (function->memid < firstOfIDispatch)
            functions.push_back(Describe(type, *function.operator->()));
    }
    return functions;
}

std::vector<std::string> Values(ITypeInfo* enumeration) {
    const Attributes attributes(enumeration);
    std::vector<std::string> values;
    for (UINT i = 0; i < attributes->cVars; ++i) {
        const VariableAt variable(enumeration, i);
        BSTR name = nullptr;
        Must(enumeration->GetDocumentation(variable->memid, &name, nullptr, nullptr, nullptr),
             "GetDocumentation");
        values.push_back(std::to_string(variable->lpvarValue->lVal) + " " + Taken(name));
    }
    return values;
}

std::vector<std::string> Faces(ITypeInfo* coclass) {
    const Attributes attributes(coclass);
    std::vector<std::string> faces;
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
        INT flags = 0;
        HREFTYPE reference = 0;
        TypeInfo face;
        Must(coclass->GetImplTypeFlags(i, &flags), "GetImplTypeFlags");
        Must(coclass->GetRefTypeOfImplType(i, &reference), "GetRefTypeOfImplType");
        Must(coclass->GetRefTypeInfo(reference, &face), "GetRefTypeInfo");
        faces.push_back(std::string(flags & IMPLTYPEFLAG_FDEFAULT ? "default " : "") +
                        (flags & IMPLTYPEFLAG_FSOURCE ? "source " : "") + NameOf(face.Get()));
    }
    return faces;
}

} // namespace typelibrary
