#include "database_links.h"

#include <algorithm>
#include <utility>

namespace moremate {
namespace {

struct TDatabaseAddress {
    ProblemDatabase database;
    const char* sAddress;
    const char* sPathAndQuery;
    const char* sAfterId;
    const char* sDescriptionKey;  // nullptr: descriptions never name the database
};

constexpr TDatabaseAddress kDatabases[] = {
    {ProblemDatabase::Yacpdb, "https://www.yacpdb.org", "/?id=", "", "YACPDB="},
    {ProblemDatabase::Pdb, "https://pdb.dieschwalbe.de", "/search.jsp?expression=PROBID='P", "", "PDB: "},
    {ProblemDatabase::Meson, "https://www.bstephen.me.uk", "/meson/pidsearch.pl?pid=", "", "Meson: "},
    {ProblemDatabase::Albrecht, "https://www.dieschwalbe.de/albrecht",
     "/search5.php?spalten=ProblemNr&search=", "&type=search", "Albrecht: "},
    {ProblemDatabase::Gameknot, "https://gameknot.com", "/comment.pl?t=2&k=", "", nullptr},
    {ProblemDatabase::ChessStar, "https://www.chessstar.com",
     "/en/competitions/standard/annual/annual.php?ELEMENT_ID=", "", nullptr},
};

const TDatabaseAddress& AddressOf(ProblemDatabase database) {
    for (const TDatabaseAddress& address : kDatabases)
        if (address.database == database) return address;
    return kDatabases[0];
}

std::string_view IdAt(std::string_view description, size_t start) {
    const size_t end = description.find_first_of(" \t,;)", start);
    return description.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

}  // namespace

std::string DatabaseLink(ProblemDatabase database, std::string_view id) {
    if (database == ProblemDatabase::Pdb && id.starts_with('P')) id.remove_prefix(1);
    const TDatabaseAddress& address = AddressOf(database);
    return std::string(address.sAddress) + address.sPathAndQuery + std::string(id) + address.sAfterId;
}

std::vector<TDatabaseReference> FindDatabaseReferences(std::string_view description) {
    std::vector<std::pair<size_t, TDatabaseReference>> found;
    for (const TDatabaseAddress& address : kDatabases) {
        if (address.sDescriptionKey == nullptr) continue;
        const std::string_view key = address.sDescriptionKey;
        for (size_t at = description.find(key); at != std::string_view::npos;
             at = description.find(key, at + 1)) {
            const std::string_view id = IdAt(description, at + key.size());
            if (!id.empty()) found.push_back({at, {address.database, std::string(id)}});
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<TDatabaseReference> references;
    for (auto& [at, reference] : found) references.push_back(std::move(reference));
    return references;
}

std::string DescriptionReference(const TDatabaseReference& reference) {
    const char* key = AddressOf(reference.database).sDescriptionKey;
    return (key == nullptr ? "" : key) + reference.sId;
}

}  // namespace moremate
