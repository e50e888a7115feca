#include "scriptedports.h"

#include <map>
#include <utility>

namespace {

struct Machine {
    std::map<std::string, PortKind> ports;
    std::vector<std::string> asked;
    std::function<void(const std::string&)> onProbe;
};

Machine machine;

} // namespace

PortProbe ProbePort(const char* szPort) {
    machine.asked.emplace_back(szPort);
    if (machine.onProbe)
        machine.onProbe(szPort);
    const auto found = machine.ports.find(szPort);
    if (found == machine.ports.end())
        return {false, PortKind::Unknown};
    return {true, found->second};
}

namespace host {

void ScriptedPorts::Reset() {
    machine = {};
}

void ScriptedPorts::Plug(const std::string& name, PortKind kind) {
    machine.ports[name] = kind;
}

void ScriptedPorts::Unplug(const std::string& name) {
    machine.ports.erase(name);
}

void ScriptedPorts::OnProbe(std::function<void(const std::string& name)> action) {
    machine.onProbe = std::move(action);
}

std::vector<std::string> ScriptedPorts::TakeAsked() {
    return std::exchange(machine.asked, {});
}

size_t ScriptedPorts::AskedCount() {
    return machine.asked.size();
}

std::vector<std::string> PortNamesFrom(int highest) {
    std::vector<std::string> names;
    for (int port = highest; port > 0; --port)
        names.push_back("COM" + std::to_string(port));
    return names;
}

} // namespace host
