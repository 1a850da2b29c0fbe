#include "directory/DirectoryBackend.h"

#include <algorithm>
#include <cctype>

namespace sable {

int requestedAttributeIndex(const std::vector<std::string>& wanted, const std::string& returned)
{
    std::string name = returned.substr(0, returned.find(';'));
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    const auto at = std::find(wanted.begin(), wanted.end(), name);
    return at == wanted.end() ? -1 : static_cast<int>(at - wanted.begin());
}

} // namespace sable
