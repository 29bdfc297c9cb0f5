#include "apps/joinery-desk/query_applier.h"

#include <QPointer>
#include <QTimer>

#include "apps/joinery-desk/builder_text.h"
#include "engine/engine_linux.h"

namespace QB::Desk {
namespace {

constexpr int retryMs = 20;  // until another load has ended

}  // namespace

QueryApplier::QueryApplier(const QueryParsing& parsing, BuilderText* builderText, QObject* parent)
    : QObject(parent), m_parsing(parsing), m_builderText(builderText) {}

QBEngine_LINUX* QueryApplier::engine() const {
    return m_builderText->engine();
}

void QueryApplier::reset() {
    if (isBusy()) end(false);
}

void QueryApplier::apply(const std::string& text) {
    if (isBusy() || !engine()) return;
    ++m_number;
    m_text = text;
    m_isBusy = true;
    load();
}

void QueryApplier::load() {
    if (!isBusy() || !engine()) return;
    if (m_parsing.isLoading(engine())) {
        QTimer::singleShot(retryMs, this, &QueryApplier::load);
        return;
    }
    m_previous = engine()->recordQuery();
    m_previousLayers = engine()->layerPath();
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
    if (isAccepted) return end(true);
    if (engine()) engine()->restoreQuery(m_previous, m_previousLayers, this);
    end(false, tr("The builder did not take the text, although it was accepted before. The query "
                  "is as it was."));
}

void QueryApplier::end(bool isApplied, const QString& error) {
    ++m_number;
    m_isBusy = false;
    m_previous.clear();
    Q_EMIT loadingChanged(false);
    Q_EMIT ended(isApplied, error);
}

}  // namespace QB::Desk
