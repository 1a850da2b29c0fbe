#include "directory/DirectoryBackend.h"

#include <algorithm>
#include <cctype>

namespace sable {

int requestedAttributeIndex(const std::vector<std::string>& wanted, std::string_view returned)
{
    // Called for every attribute of every entry: compared in place, without copies.
    const std::string_view name = returned.substr(0, returned.find(';'));
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (wanted[i].size() == name.size()
            && std::equal(name.begin(), name.end(), wanted[i].begin(),
                [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; }))
            return static_cast<int>(i);
    }
    return -1;
}

} // namespace sable
