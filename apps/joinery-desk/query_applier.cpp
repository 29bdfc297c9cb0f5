#include "apps/joinery-desk/query_applier.h"

#include <QPointer>
#include <QTimer>
#include <utility>

#include "apps/joinery-desk/builder_text.h"
#include "engine/engine_linux.h"

namespace QB::Desk {
namespace {

constexpr int retryMs = 20;  // until another load has ended
constexpr long noStatement = -1;

const std::string* lastOf(const std::vector<std::string>& texts) {
    return texts.empty() ? nullptr : &texts.back();
}

}  // namespace

QueryApplier::QueryApplier(const QueryParsing& parsing, BuilderText* builderText, QObject* parent)
    : QObject(parent), m_parsing(parsing), m_builderText(builderText), m_checker(parsing.check) {
    connect(builderText, &BuilderText::ready, this, [this] {
        if (m_step == Step::ReadingBuilder) takePrevious();
    });
    connect(&m_checker, &SqlChecker::checked, this, &QueryApplier::judgePrevious);
}

void QueryApplier::setConfirmation(std::function<bool(const QString&)> mayGiveUp) {
    m_mayGiveUp = std::move(mayGiveUp);
}

QBEngine_LINUX* QueryApplier::engine() const {
    return m_builderText->engine();
}

long QueryApplier::statementId() const {
    const auto* statement = engine() ? engine()->currentTopLevelQueryComponent() : nullptr;
    return statement ? statement->id() : noStatement;
}

const std::string* QueryApplier::undoText() const {
    const auto found = m_histories.find(statementId());
    return found == m_histories.end() ? nullptr : lastOf(found->second.undo);
}

const std::string* QueryApplier::redoText() const {
    const auto found = m_histories.find(statementId());
    return found == m_histories.end() ? nullptr : lastOf(found->second.redo);
}

void QueryApplier::reset() {
    m_histories.clear();
    if (isBusy()) end(false);
}

void QueryApplier::apply(const std::string& text, Origin origin) {
    if (isBusy() || !engine()) return;
    ++m_number;
    m_text = text;
    m_origin = origin;
    m_step = Step::ReadingBuilder;
    m_builderText->request();
}

void QueryApplier::takePrevious() {
    m_previous = m_builderText->text();
    m_step = Step::CheckingPrevious;
    if (m_previous.empty()) return judgePrevious(SqlCheckResult());
    m_checker.start({m_previous, engine()->databaseType(), engine()->currentSchema()});
}

void QueryApplier::judgePrevious(const SqlCheckResult& result) {
    if (m_step != Step::CheckingPrevious) return;
    // The question has an event loop, in which the engine may go.
    const int number = m_number;
    const QString reason = QString::fromStdString(result.outcome.message);
    const bool isWanted = result.isAccepted() || !m_mayGiveUp || m_mayGiveUp(reason);
    if (number != m_number || m_step != Step::CheckingPrevious) return;
    if (!isWanted) return end(false);
    m_step = Step::Loading;
    load();
}

void QueryApplier::load() {
    if (m_step != Step::Loading || !engine()) return;
    // What the user has done in the builder meanwhile must be in the text that is kept, too.
    if (m_builderText->needsUpdateQuery()) {
        m_step = Step::ReadingBuilder;
        return m_builderText->request();
    }
    if (m_parsing.isLoading(engine())) {
        QTimer::singleShot(retryMs, this, &QueryApplier::load);
        return;
    }
    Q_EMIT loadingChanged(true);
    m_parsing.load(engine(), m_text,
                   [applier = QPointer(this), number = m_number](bool isAccepted) {
                       // The engine is not done yet: it clears its flag and announces the change.
                       if (applier) applier->finishLater(number, isAccepted);
                   });
}

void QueryApplier::finishLater(int number, bool isAccepted) {
    QTimer::singleShot(0, this, [this, number, isAccepted] {
        if (number == m_number && isBusy()) finishLoad(isAccepted);
    });
}

/// A load that was refused has left an empty statement behind.
void QueryApplier::finishLoad(bool isAccepted) {
    if (!isAccepted) {
        if (engine()) m_parsing.load(engine(), m_previous, [](bool) {});
        return end(false, tr("The builder did not take the text, although it was accepted before. "
                             "The query is as it was."));
    }
    remember();
    end(true);
}

void QueryApplier::remember() {
    History& history = m_histories[statementId()];
    if (m_origin == Origin::Undo && !history.undo.empty()) history.undo.pop_back();
    if (m_origin == Origin::Redo && !history.redo.empty()) history.redo.pop_back();
    if (m_origin == Origin::User) history.redo.clear();
    (m_origin == Origin::Undo ? history.redo : history.undo).push_back(m_previous);
}

void QueryApplier::end(bool isApplied, const QString& error) {
    ++m_number;
    m_step = Step::Idle;
    m_checker.cancel();
    Q_EMIT loadingChanged(false);
    Q_EMIT ended(isApplied, error);
}

}  // namespace QB::Desk
