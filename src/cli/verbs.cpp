#include "cli/verb.h"

namespace pelorin::cli {

#define VERB(name, words, summary) VerbAction SetUp##name(VerbSetup& setup);
#include "cli/verbs.def"
#undef VERB

std::span<const Verb> AllVerbs() {
    static const std::vector<Verb> verbs = {
#define VERB(name, words, summary) {words, summary, SetUp##name},
#include "cli/verbs.def"
#undef VERB
    };
    return verbs;
}

} // namespace pelorin::cli
