// Links to outside problem databases: the database's address, a fixed path with a query key and
// the problem's identifier there. Descriptions name the identifier as "PDB: ", "Meson: ",
// "Albrecht: " or "YACPDB=" followed by it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace moremate {

enum class ProblemDatabase : uint8_t { Yacpdb, Pdb, Meson, Albrecht, Gameknot, ChessStar };

struct TDatabaseReference {
    ProblemDatabase database = ProblemDatabase::Yacpdb;
    std::string sId;
    friend bool operator==(const TDatabaseReference&, const TDatabaseReference&) = default;
};

// The web page of the problem `id` in `database`. A PDB identifier may keep its leading "P".
std::string DatabaseLink(ProblemDatabase database, std::string_view id);

// The references a description holds, in the order they appear. An identifier runs up to the
// next blank, ",", ";" or ")".
std::vector<TDatabaseReference> FindDatabaseReferences(std::string_view description);

// How a description names a reference: "PDB: P1234567", "YACPDB=123".
std::string DescriptionReference(const TDatabaseReference& reference);

}  // namespace moremate
