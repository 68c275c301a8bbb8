// PortLink: the name under which a client finds the pseudo terminal.
#pragma once

#include <string>

namespace mainunit {

// The folder tesselia/ports of the user's configuration folder. Empty if the user has none.
std::string DefaultPortsFolder();

// A symbolic link that goes with its object.
class PortLink {
public:
    PortLink() = default;
    PortLink(const PortLink&) = delete;
    PortLink& operator=(const PortLink&) = delete;
    ~PortLink();

    // Makes the link `folder`/com1 for the name "COM1", and the folder if need be. A link of an earlier run, which leads to
    // a pseudo terminal, is replaced; anything else that stands there is not. On failure the result is false and `error`
    // says why.
    bool Create(const std::string& folder, const std::string& name, const std::string& device, std::string& error);

private:
    std::string path;
    std::string target;
};

}  // namespace mainunit
