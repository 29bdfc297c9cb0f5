#include <gtest/gtest.h>

#include "engine/engine_linux.h"
#include "engine/event_trigger.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;

// ---- raw listeners ----------------------------------------------------------------------------

class ListenerTest : public EngineTest {
protected:
    long add(const std::string& name, std::function<void()> action = nullptr) {
        return engine->registerNotifyChangeListener(
            "name", [this, name, action](const std::string&, const auto* given) {
                EXPECT_EQ(given, &params);
                calls += name;
                if (action) action();
            });
    }

    std::string fire() {
        calls.clear();
        engine->notifyChange("name", &params);
        return calls;
    }

    const QBNotificationParameters params = {};
    std::string calls;
};

TEST_F(ListenerTest, OneThatIsUnregisteredByItselfOrAnotherIsNotCalledAnyMore) {
    long self = 0;
    long other = 0;
    self = add("a", [&] { engine->unregisterNotifyChangeListener("name", self); });
    add("b", [&] { engine->unregisterNotifyChangeListener("name", other); });
    other = add("c");
    add("d");
    EXPECT_EQ(fire(), "abd");
    EXPECT_EQ(fire(), "bd");
    EXPECT_EQ(engine->takeNames(), (Names{"name", "name"}));
    engine->unregisterNotifyChangeListener("unknown", 5);
}

TEST_F(ListenerTest, OneMayDestroyTheEngineAndAnEmptyOneThrows) {
    engine->registerNotifyChangeListener("empty", nullptr);
    EXPECT_THROW(engine->notifyChange("empty", nullptr), std::bad_function_call);
    add("a", [this] { engine.destroy(); });
    add("b");
    EXPECT_EQ(fire(), "a");
}

// ---- signals ----------------------------------------------------------------------------------

class SignalTest : public ::testing::Test {
protected:
    using Emitter = QBEngineSignalEmitter;

    SignalTest() {
        log(&Emitter::uiReset, "reset");
        log(&Emitter::databaseTypeChanged, "server");
        log(&Emitter::currentSchemaChanged, "schema");
        log(&Emitter::identifierCandidateChildrenUpdateBegun, "begun");
        log(&Emitter::identifierCandidateChildrenUpdateEnded, "ended");
        log(&Emitter::topLevelQueryComponentLayerChanged, "layer");
        log(&Emitter::topLevelQueryComponentElementModified, "modified");
        log(&Emitter::componentFocusChanged, "focus");
    }

    template <typename Signal>
    void log(Signal signal, const std::string& name) {
        QObject::connect(engine->signalEmitter(), signal,
                         [this, name](QBEngine* from, const auto&... args) {
                             EXPECT_EQ(from, engine.get());
                             text += name;
                             ((text += " " + textOf(args)), ...);
                             text += ";";
                         });
    }

    static std::string textOf(const void* p) {
        return p ? "@" + std::to_string(*static_cast<const int*>(p)) : "null";
    }
    static std::string textOf(int value) { return std::to_string(value); }
    static std::string textOf(const QSet<TopLevelQueryComponentElementEnum>& elements) {
        std::string list;
        for (const int element : std::set<int>(elements.begin(), elements.end()))
            list += std::to_string(element);
        return list;
    }

    std::string emitted(const std::string& name, const QBNotificationParameters* params) {
        text.clear();
        engine->notifyChange(name, params);
        return text;
    }
    std::string emitted(const std::string& name, const QBNotificationParameters& params) {
        return emitted(name, &params);
    }

    HostCallbacks host;
    OwnedEngine<QBEngine_LINUX> engine;
    std::string text;
    int numbers[2] = {7, 8};  // what stands behind pointers here
    void* seven = &numbers[0];
    void* eight = &numbers[1];
    void* none = nullptr;
};

TEST_F(SignalTest, EveryNameBecomesItsSignalWithItsParameters) {
    using namespace Notification;
    EXPECT_EQ(emitted(uiReset, nullptr), "reset;");
    EXPECT_EQ(emitted(currentSchemaChanged, nullptr), "schema;");
    for (const int type : {0, 1}) {
        for (const int version : {0, 1})
            EXPECT_EQ(emitted(databaseServerChanged,
                              {{"dbTypeChanged", type}, {"dbVersionChanged", version}}),
                      type || version ? "server;" : "");
    }
    EXPECT_EQ(emitted(identifierCandidateChildrenUpdateBegun, {{"ident", seven}}), "begun @7;");
    EXPECT_EQ(emitted(identifierCandidateChildrenUpdateEnded, {{"ident", none}}), "ended null;");
    EXPECT_EQ(
        emitted(componentFocusChanged, {{"component", seven}, {"focused", 1}, {"sender", eight}}),
        "focus @7 1 @8;");
    EXPECT_EQ(emitted(componentFocusChanged, {{"component", seven}, {"focused", 0}}),
              "focus @7 0 null;");
    EXPECT_EQ(emitted(topLevelQueryComponentLayerChanged, nullptr), "layer null;");
    EXPECT_EQ(emitted(topLevelQueryComponentLayerChanged, {{"poppedLayer", seven}}), "layer @7;");
    QBNotificationParameters eleven = {{"layer", 2}, {"sender", seven}, {"elements.size", 11}};
    for (int i = 0; i < 11; ++i)
        eleven["elements[" + std::to_string(i) + "]"] = i % 7;
    EXPECT_EQ(emitted(topLevelQueryComponentElementModified, eleven), "modified 0123456 2 @7;");
    EXPECT_EQ(emitted(parsingQueryUnsupported, {{"message", std::string("no")}}), "");
    EXPECT_EQ(host.errors, Names{"no"});
}

TEST_F(SignalTest, AReceiverMayDestroyTheEngineAlsoBetweenTwoNoticesOfOneCall) {
    for (const bool isReset : {true, false}) {
        OwnedEngine<QBEngine_LINUX> other(DatabaseTypeMySQL);
        other->pushNewLayerTopLevelQueryComponent(nullptr, "sub");
        QObject::connect(other->signalEmitter(), &Emitter::topLevelQueryComponentLayerChanged,
                         [&other] { other.destroy(); });
        isReset ? other->resetUi() : other->setDatabaseInfo(DatabaseTypeMySQL, 2);
        EXPECT_EQ(other.get(), nullptr);
    }
}

// ---- event triggers ---------------------------------------------------------------------------

class TriggerTest : public ::testing::Test {
protected:
    void add(const QBEventListener& owner, const std::string& name,
             std::function<void()> action = nullptr) {
        const auto call = [this, name, action](int value) {
            calls += name + std::to_string(value);
            if (action) action();
        };
        trigger->addListener(call, owner.guarantor());
    }

    std::unique_ptr<QBEventTrigger<int>> trigger = std::make_unique<QBEventTrigger<int>>();
    std::unique_ptr<QBEventListener> listener = std::make_unique<QBEventListener>();
    std::string calls;
};

TEST_F(TriggerTest, AnOwnerThatDiesInItsFirstFunctionGetsNoSecondCallNotEvenNested) {
    add(*listener, "a", [this] {
        listener.reset();
        trigger->fire(2);
    });
    add(*listener, "b");
    trigger->fire(1);
    trigger->fire(3);
    EXPECT_EQ(calls, "a1");
}

TEST_F(TriggerTest, AFunctionMayDestroyTheTrigger) {
    QBEventListener other;
    add(*listener, "a", [this] { trigger.reset(); });
    add(*listener, "b");
    add(other, "c", [this] { trigger.reset(); });
    trigger->fire(1);
    EXPECT_TRUE(calls == "a1" || calls == "c1") << calls;  // whichever owner comes first
}
