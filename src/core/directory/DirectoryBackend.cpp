#include "directory/DirectoryBackend.h"

#include <algorithm>
#include <cctype>

namespace sable {

DirectoryEntryCollector::DirectoryEntryCollector(
    const std::vector<std::string>& attributes, const std::function<bool(DirectoryRawEntry&)>& visit)
    : m_visit(visit)
{
    for (std::string name : attributes) {
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        m_wanted.push_back(std::move(name));
    }
}

void DirectoryEntryCollector::begin(std::string dn)
{
    m_entry.dn = std::move(dn);
    m_entry.values.resize(m_wanted.size());
    for (std::vector<std::string>& values : m_entry.values)
        values.clear();
}

int DirectoryEntryCollector::indexOf(std::string_view returned) const
{
    // Called for every attribute of every entry: compared in place, without copies.
    const std::string_view name = returned.substr(0, returned.find(';'));
    for (size_t i = 0; i < m_wanted.size(); ++i) {
        if (m_wanted[i].size() == name.size()
            && std::equal(name.begin(), name.end(), m_wanted[i].begin(),
                [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; }))
            return static_cast<int>(i);
    }
    return -1;
}

} // namespace sable
