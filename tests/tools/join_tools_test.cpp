#include "tools/join_tools.h"

#include <gtest/gtest.h>

#include "join_fixture.h"
#include "layouts/condition_list_layout.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

/// Steps are "a-b" for a link of the fields x, "I~" ... see JoinFixture::run.
struct Case {
    const char* tree;
    const char* steps;
    const char* treeAfter;
    const char* conditionsAfter;  ///< of the joins in text order; those of one join with "&"
};

class JoinTools : public JoinFixture {};

}  // namespace

TEST_F(JoinTools, ShapeTheTreeByLinks) {
    const Case cases[] = {
        // one comma between the two
        {"C(a,b)", "a-b", "I(a,b)", "a=b"},
        {"C(a,b)", "b-a", "I(a,b)", "a=b"},
        {"C(I(a,b),c)", "a-c", "I(I(a,b),c)", "- a=c"},
        {"C(C(a,b),c)", "b-c", "I(C(a,b),c)", "- b=c"},
        {"C(L(a,b),R(c,d))", "b-d", "I(L(a,b),R(c,d))", "- b=d -"},
        // what is joined to one comes next to what is joined to the other
        {"C(C(a,b),c)", "a-c", "C(I(a,c),b)", "a=c -"},
        {"C(a,C(b,c))", "a-c", "C(I(a,c),b)", "a=c -"},
        {"C(a,C(b,c))", "b-c", "C(a,I(b,c))", "- b=c"},
        {"C(C(a,b),C(c,d))", "b-d", "C(C(a,I(b,d)),c)", "- b=d -"},
        {"C(C(I(a,b),c),d)", "b-d", "C(I(I(a,b),d),c)", "- b=d -"},
        {"C(C(I(a,I(c,d)),b),e)", "c-d", "C(C(I(a,I(c,d)),b),e)", "- c=d - -"},
        {"J(C(a,b),c)", "a-b", "J(I(a,b),c)", "a=b -"},
        {"C(J(C(a,b),c),d)", "a-d", "C(I(a,d),J(b,c))", "a=d - -"},
        {"J(C(a,b),c)", "a-c", "I(a,J(b,c))", "a=c -"},
        {"C(a,L(C(b,c),d))", "a-d", "C(I(a,L(c,d)),b)", "a=d - -"},
        {"I(a,C(b,c))", "a-b", "C(I(a,b),c)", "a=b -"},
        {"L(J(C(a,b),C(c,d)),e)", "d-e", "C(C(a,J(b,c)),L(d,e))", "- - - d=e"},
        // joined already: the shape stays
        {"J(a,b)", "a-b b-a", "J(a,b)", "a=b&a=b"},
        {"I(C(n,a),b)", "a-b", "I(C(n,a),b)", "- a=b"},
        {"X(a,F(b,c))", "a-c", "X(a,F(b,c))", "- -"},
        {"L(R(a,b),c)", "b-a c-a", "L(R(a,b),c)", "a=b a=c"},
        // brackets hold what they hold
        {"C(a,[C(b,c)])", "a-c", "I(a,[C(b,c)])", "a=c -"},
        {"C(a,[C(b,c)])", "b-c", "C(a,[I(b,c)])", "- b=c"},
        {"C(C([C(b,c)],a),[[d]])", "c-d", "C(I([C(b,c)],[[d]]),a)", "- c=d -"},
        {"I(a,[C(b,C(c,d))])", "b-d a-c", "I(a,[C(I(b,d),c)])", "a=c b=d -"},
        // without fields, with one, and with several
        {"C(a,b)", "a-b:", "I(a,b)", "-"},
        {"I(a,b)", "a-b:", "I(a,b)", "-"},
        {"C(a,b)", "a-b:x", "I(a,b)", "a=?"},
        {"C(a,b)", "b-a:x=y,z=w", "I(a,b)", "a=b&a=b"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.tree << " " << c.steps);
        setTree(c.tree);
        run(c.steps);
        EXPECT_EQ(tree(), c.treeAfter);
        EXPECT_EQ(conditions(), c.conditionsAfter);
    }
}

}  // namespace QB::Test
