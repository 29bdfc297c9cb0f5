#include "apps/joinery-sql/script/commands.h"

#include <algorithm>

#include "apps/joinery-sql/script/refusal.h"

namespace QB::Cli {
namespace {

struct Command {
    const char* name;
    const char* arguments;
    const char* summary;
    CommandFunction run;
};

std::string expect(Call& call);

constexpr Command commandTable[] = {
    {"dialect", "NAME [VERSION]", "starts anew, for this server family", setDialect},
    {"schema", "[NAME]", "the schema in which unqualified names are found", setSchema},
    {"table", "TABLE FIELD...", "states a table, in place of a database", declareTable},
    {"key", "A.X -> B.Y [, A.Z -> B.W]", "states a foreign key of A", declareKey},
    {"open", "FILE", "starts anew on a SQLite database, or parses a file", openFile},
    {"parse", "SQL", "makes this the query; or parse: and a block", parseText},
    {"add", "TABLE [AS NAME] [alone]", "adds a source; joins it by its keys unless alone",
     addSource},
    {"remove", "SOURCE", "removes a source from FROM", removeSource},
    {"alias", "SOURCE [NAME]", "calls a source NAME, or by its own name again", setAlias},
    {"link", "A.X B.Y [, A.Z B.W] | A B", "joins two sources, where these are equal", link},
    {"unlink", "A.X B.Y | ROW", "removes that condition, or all that a join row binds", unlink},
    {"join", "ROW KIND", "left, right, inner, full, cross or other text", setJoinType},
    {"tick", "FIELD | all [SOURCE] [and *]", "puts fields into the SELECT list", tick},
    {"untick", "FIELD | all [SOURCE] [and *]", "takes fields out of the SELECT list", untick},
    {"select", "EDIT", "edits the rows of the SELECT list", editSelect},
    {"from", "EDIT", "edits the rows of FROM", editFrom},
    {"on", "ROW EDIT", "edits the condition of the join in that row of FROM", editJoinCondition},
    {"where", "EDIT", "edits the rows of WHERE", editWhere},
    {"group", "EDIT", "edits the rows of GROUP BY", editGroup},
    {"having", "EDIT", "edits the rows of HAVING", editHaving},
    {"order", "EDIT", "edits the rows of ORDER BY", editOrder},
    {"option", "[TEXT]", "what follows SELECT, such as DISTINCT", setSelectOption},
    {"limit", "[COUNT] [offset COUNT] [percent] [ties]", "the row limit; alone: none", setLimit},
    {"layer", "push SOURCE | pop", "edits a subquery, or goes back", changeLayer},
    {"fields", "SOURCE", "prints the fields of a table or subquery", showFields},
    {"keys", "SOURCE", "prints the joins that foreign keys propose", showKeys},
    {"validate", "", "prints what is marked as invalid, and why", validate},
    {"show", "VIEW", "prints sql, rows [CLAUSE], statement, layers or changes", show},
    {"expect", "[error] COMMAND:", "compares what it prints with the block that follows", expect},
};

const Command* findCommand(const std::string& name) {
    const auto* const found =
        std::find_if(std::begin(commandTable), std::end(commandTable),
                     [&](const Command& command) { return name == command.name; });
    return found == std::end(commandTable) ? nullptr : found;
}

std::string run(Session& session, const std::string& text,
                const std::optional<std::string>& block) {
    Words words(text, session.family());
    if (words.isAtEnd()) return {};  // a comment of the dialect's
    const std::string name = words.keyword("a command");
    const Command* const command = findCommand(name);
    if (!command)
        throw Refusal("there is no command \"" + name +
                      "\": \"joinery-sql script --help\" lists them");
    const bool takesBlock = command->run == expect || command->run == parseText;
    if (block && !takesBlock) throw Refusal(name + " takes no block");
    Call call{session, words, block};
    std::string printed = command->run(call);
    words.end();
    Session::waitForWork();
    return printed;
}

/// Runs the command that was expected to be refused.
/// Returns: the reason.
std::string refusalOf(Session& session, const std::string& text) {
    try {
        run(session, text, {});
    } catch (const Refusal& refusal) {
        return std::string(refusal.what()) + '\n';
    }
    throw Refusal("this was expected to be refused, and was not");
}

/// Blanks at the end of a line do not show, and many an editor takes them away.
std::string withoutTrailingBlanks(const std::string& text) {
    std::string result;
    std::size_t kept = 0;  // up to the last character of the line that is no blank
    for (const char c : text) {
        if (c == '\n') result.resize(kept);
        result += c;
        if (c != ' ' && c != '\t') kept = result.size();
    }
    return result;
}

std::string lineAt(const std::string& text, std::size_t start) {
    return text.substr(start, text.find('\n', start) - start);
}

/// What the first line that differs is, and all that was found.
std::string difference(const std::string& expected, const std::string& found) {
    const auto differs =
        std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
    const auto common = static_cast<std::size_t>(differs.first - expected.begin());
    const std::size_t start = common == 0 ? 0 : expected.rfind('\n', common - 1) + 1;
    const auto line = std::count(expected.begin(), differs.first, '\n') + 1;
    const auto shown = [start](const std::string& text) {
        return start < text.size() ? '"' + lineAt(text, start) + '"' : std::string("missing");
    };
    return "line " + std::to_string(line) + " is " + shown(found) + ", expected " +
           shown(expected) + ". Found:\n" + found.substr(0, found.size() - 1);
}

std::string expect(Call& call) {
    const bool isError = call.words.skip("error");
    const std::string text = call.words.rest("a command");
    if (!isError && !call.block) throw Refusal("what is expected? End the line with a colon");
    Words words(text, call.session.family());
    const bool isView = !findCommand(words.keyword("a command"));
    const std::string found = isError ? refusalOf(call.session, text)
                                      : run(call.session, isView ? "show " + text : text, {});
    if (!call.block) return {};
    const std::string expected = withoutTrailingBlanks(*call.block);
    const std::string shown = withoutTrailingBlanks(found);
    if (shown != expected) throw Refusal(difference(expected, shown));
    return {};
}

}  // namespace

std::string runCommand(Session& session, const std::string& text,
                       const std::optional<std::string>& block) {
    return run(session, text, block);
}

std::string commandList() {
    std::string list;
    for (const Command& command : commandTable) {
        std::string line = std::string("  ") + command.name + ' ' + command.arguments;
        line.resize(48, ' ');
        list += line + command.summary + '\n';
    }
    return list;
}

}  // namespace QB::Cli
