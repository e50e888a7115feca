// A type library in plain words: each function, value and object as one line of text.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <map>
#include <string>
#include <vector>

namespace typelibrary {

using TypeInfo = Microsoft::WRL::ComPtr<ITypeInfo>;

struct Function {
    std::string line; // "88 put PortOpen() VARIANT_BOOL nonbrowsable"
    std::string help;
    MEMBERID number;
    INVOKEKIND kind;
    std::string name;
    int slot; // offset in the table of virtual functions, in pointers
};

struct Type {
    std::string line; // "coclass TarnComm"
    std::string identifier;
    std::string help;
    TypeInfo info;
};

// The library in the resources of a module; throws what went wrong as a text.
class Library {
  public:
    explicit Library(const wchar_t* path);
    std::vector<Type> Types() const;
    TypeInfo Find(const char* name) const;
    ITypeLib* operator->() const { return library_.Get(); }

  private:
    Microsoft::WRL::ComPtr<ITypeLib> library_;
};

WORD Flags(ITypeInfo* type);
std::string NameOf(ITypeInfo* type);
// The table of virtual functions behind the dispatch interface of a dual one.
TypeInfo VirtualFace(ITypeInfo* dual);
// Those of the type itself, without those of IDispatch.
std::vector<Function> Functions(ITypeInfo* type);
// "3 Handshaking_Both"
std::vector<std::string> Values(ITypeInfo* enumeration);
// "default source _ITarnCommEvents"
std::vector<std::string> Faces(ITypeInfo* coclass);

} // namespace typelibrary
