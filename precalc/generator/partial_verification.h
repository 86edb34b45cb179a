// The verification of data whose generation stopped part way or is incomplete: a type's data is
// made after the data of every type its captures and promotions lead to, down to the smallest, so
// an interrupted generation leaves some of these types on disk and not the others. Each type on
// disk whose own such types are all there is verified; the others are named.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "verification.h"

namespace moremate {

struct TPartialVerification {
    std::vector<std::pair<std::string, TVerificationReport>> m_vVerified;  // smaller types first
    std::vector<std::string> m_vMissing;                                   // no file on disk
    std::vector<std::string> m_vUnchecked;  // on disk, but a type it leads to is missing
    bool m_bStopped = false;                // the stop flag ended it before the types left
};

// `type` and the types its generation makes first, each once, in the generator's order (the
// types a capture or promotion leads to before the type itself); types with White bare left out.
std::vector<TPrecalcType> TypesGeneratedFor(const TPrecalcType& type);

// The lines that tell what was not verified: "Not on disk: KBk KNk", "On disk, not checked (a type
// it leads to is missing): KPk" and "Stopped before the types left", each only when it applies.
std::vector<std::string> PartialVerificationNotes(const TPartialVerification& result);

// Verifies what exists of the data of `type` and the types made before it. `stop`, when set,
// ends it before the next type.
TPartialVerification VerifyPartialData(TGlobalRegisters& registers, const TPrecalcType& type,
                                       unsigned threads, bool bProgress,
                                       const std::atomic<bool>* stop = nullptr);

}  // namespace moremate
