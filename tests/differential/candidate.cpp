#include "differential/candidate.h"

#include "differential/adversarial_schema.h"
#include "differential/statement_generator.h"

namespace QB::Test {
namespace {

Candidate candidateOf(ServerSession& session, unsigned seed) {
    Candidate candidate;
    const bool schemaIsKnown = seed % 3 != 0;
    const bool isOther = seed % 11 == 0 && session.family() != DatabaseTypeSQLite;
    candidate.bareSchema = isOther ? "other" : mainSchema(session.family());
    candidate.schema = schemaIsKnown ? candidate.bareSchema : "";
    StatementGenerator generator(session.family(), candidate.bareSchema, schemaIsKnown, seed);
    candidate.tokens = generator.statement();
    candidate.isOdd = seed % 4 == 0;
    if (candidate.isOdd) {
        candidate.tokens = oddlyWritten(candidate.tokens, session.family(), seed);
    }
    candidate.sql = plainText(candidate.tokens);
    session.useSchema(candidate.bareSchema);
    candidate.original = session.ask(candidate.sql);
    return candidate;
}

}  // namespace

Candidate randomCandidate(ServerSession& session, unsigned number) {
    constexpr unsigned tries = 7;
    Candidate best;
    best.bareSchema = mainSchema(session.family());
    best.original.isRefused = true;
    for (unsigned i = 0; i < tries; ++i) {
        Candidate candidate = candidateOf(session, number * tries + i);
        if (candidate.original.isRefused) continue;
        if (candidate.original.rows.size() > 1) return candidate;
        best = std::move(candidate);
    }
    session.useSchema(best.bareSchema);
    return best;
}

}  // namespace QB::Test
