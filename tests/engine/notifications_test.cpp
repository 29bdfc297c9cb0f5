#include <gtest/gtest.h>

#include "engine/engine_linux.h"
#include "engine/event_trigger.h"
#include "model/notification_names.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;

// ---- raw listeners ----------------------------------------------------------------------------

class ListenerTest : public EngineTest {
protected:
    long add(const std::string& name, std::function<void()> action = nullptr) {
        return engine->registerNotifyChangeListener(
            "name", [this, name, action](const std::string&, const auto*) {
                calls += name;
                if (action) action();
            });
    }

    std::string fire() {
        calls.clear();
        engine->notifyChange("name", nullptr);
        return calls;
    }

    std::string calls;
};

TEST_F(ListenerTest, AreCalledInOrderAndThenTheEngineItself) {
    add("a");
    add("b");
    EXPECT_EQ(fire(), "ab");
    engine->notifyChange("other", nullptr);
    EXPECT_EQ(engine->takeNames(), (Names{"name", "other"}));
}

TEST_F(ListenerTest, GetTheSameParameters) {
    const QBNotificationParameters params = {{"key", 3}};
    const QBNotificationParameters* seen = nullptr;
    engine->registerNotifyChangeListener(
        "name", [&seen](const std::string&, const auto* given) { seen = given; });
    engine->notifyChange("name", &params);
    EXPECT_EQ(seen, &params);
}

TEST_F(ListenerTest, OneThatUnregistersItselfDisturbsNobody) {
    long token = 0;
    token = add("a", [&] { engine->unregisterNotifyChangeListener("name", token); });
    add("b");
    EXPECT_EQ(fire(), "ab");
    EXPECT_EQ(fire(), "b");
}

TEST_F(ListenerTest, OneThatIsUnregisteredByAnotherIsNotCalledAnyMore) {
    long token = 0;
    add("a", [&] { engine->unregisterNotifyChangeListener("name", token); });
    token = add("b");
    add("c");
    EXPECT_EQ(fire(), "ac");
    engine->unregisterNotifyChangeListener("name", token);  // no effect
    engine->unregisterNotifyChangeListener("unknown", 5);
}

TEST_F(ListenerTest, NestedNotificationsSeeWhatIsRegisteredAtTheirStart) {
    bool isNested = false;
    long token = 0;
    add("a", [&] {
        if (std::exchange(isNested, true)) return;
        engine->unregisterNotifyChangeListener("name", token);
        add("c");
        engine->notifyChange("name", nullptr);
    });
    token = add("b");
    EXPECT_EQ(fire(), "aac");
}

TEST_F(ListenerTest, AnEmptyOneThrows) {
    engine->registerNotifyChangeListener("name", nullptr);
    EXPECT_THROW(fire(), std::bad_function_call);
}

TEST_F(ListenerTest, OneMayDestroyTheEngine) {
    add("a", [this] { engine.destroy(); });
    add("b");
    EXPECT_EQ(fire(), "a");
}

// ---- signals ----------------------------------------------------------------------------------

namespace {

/// The signals of an engine as text, in order.
class SignalLog {
public:
    explicit SignalLog(QBEngine_LINUX* engine) {
        const QBEngineSignalEmitter* emitter = engine->signalEmitter();
        using Emitter = QBEngineSignalEmitter;
        const auto connect = [&](auto signal, auto slot) {
            QObject::connect(emitter, signal, [this, engine, slot](QBEngine* from, auto... args) {
                EXPECT_EQ(from, engine);
                text += slot(args...) + ";";
            });
        };
        const auto pointer = [](const void* p) {
            return p ? "@" + std::to_string(*static_cast<const int*>(p)) : std::string("null");
        };
        connect(&Emitter::uiReset, [] { return std::string("reset"); });
        connect(&Emitter::databaseTypeChanged, [] { return std::string("server"); });
        connect(&Emitter::currentSchemaChanged, [] { return std::string("schema"); });
        connect(&Emitter::identifierCandidateChildrenUpdateBegun,
                [=](auto* ident) { return "begun " + pointer(ident); });
        connect(&Emitter::identifierCandidateChildrenUpdateEnded,
                [=](auto* ident) { return "ended " + pointer(ident); });
        connect(&Emitter::topLevelQueryComponentLayerChanged,
                [=](auto* popped) { return "layer " + pointer(popped); });
        connect(&Emitter::topLevelQueryComponentElementModified,
                [=](const auto& elements, int layer, void* sender) {
                    std::set<int> sorted(elements.begin(), elements.end());
                    std::string list;
                    for (const int element : sorted)
                        list += std::to_string(element);
                    return "modified {" + list + "} " + std::to_string(layer) + pointer(sender);
                });
        connect(&Emitter::componentFocusChanged, [=](auto* component, bool on, void* sender) {
            return "focus " + pointer(component) + (on ? "+" : "-") + pointer(sender);
        });
    }

    std::string text;
};

class SignalTest : public ::testing::Test {
protected:
    std::string emitted(const std::string& name, const QBNotificationParameters* params) {
        log.text.clear();
        engine->notifyChange(name, params);
        return log.text;
    }
    std::string emitted(const std::string& name, const QBNotificationParameters& params) {
        return emitted(name, &params);
    }

    HostCallbacks host;
    OwnedEngine<QBEngine_LINUX> engine;
    SignalLog log{engine.get()};
    int numbers[2] = {7, 8};  // what stands behind pointers here
    void* seven = &numbers[0];
    void* eight = &numbers[1];
};

}  // namespace

TEST_F(SignalTest, EveryNameBecomesItsSignal) {
    EXPECT_EQ(emitted(Notification::uiReset, nullptr), "reset;");
    EXPECT_EQ(emitted(Notification::currentSchemaChanged, nullptr), "schema;");
    EXPECT_EQ(emitted(Notification::identifierCandidateChildrenUpdateBegun, {{"ident", seven}}),
              "begun @7;");
    EXPECT_EQ(emitted(Notification::identifierCandidateChildrenUpdateEnded,
                      {{"ident", static_cast<void*>(nullptr)}}),
              "ended null;");
    EXPECT_EQ(emitted(Notification::componentFocusChanged,
                      {{"component", seven}, {"focused", 1}, {"sender", eight}}),
              "focus @7+@8;");
    EXPECT_EQ(emitted(Notification::componentFocusChanged, {{"component", seven}, {"focused", 0}}),
              "focus @7-null;");
}

TEST_F(SignalTest, AServerNoticeWithNothingChangedEmitsNothing) {
    const auto changed = [this](int type, int version) {
        return emitted(Notification::databaseServerChanged,
                       {{"dbTypeChanged", type}, {"dbVersionChanged", version}});
    };
    EXPECT_EQ(changed(0, 0), "");
    EXPECT_EQ(changed(1, 0), "server;");
    EXPECT_EQ(changed(0, 1), "server;");
}

TEST_F(SignalTest, APushCarriesNullAndAPopTheStatement) {
    const std::string name = Notification::topLevelQueryComponentLayerChanged;
    EXPECT_EQ(emitted(name, nullptr), "layer null;");
    EXPECT_EQ(emitted(name, QBNotificationParameters()), "layer null;");
    EXPECT_EQ(emitted(name, {{"poppedLayer", seven}}), "layer @7;");
}

TEST_F(SignalTest, AModificationCarriesTheSetOfElements) {
    const std::string name = Notification::topLevelQueryComponentElementModified;
    EXPECT_EQ(emitted(name, {{"layer", 2}, {"elements.size", 0}}), "modified {} 2null;");
    QBNotificationParameters eleven = {{"layer", 0}, {"sender", seven}, {"elements.size", 11}};
    for (int i = 0; i < 11; ++i)
        eleven["elements[" + std::to_string(i) + "]"] = i % 7;
    EXPECT_EQ(emitted(name, eleven), "modified {0123456} 0@7;");
}

TEST_F(SignalTest, ARefusedParseIsShownToTheUser) {
    EXPECT_EQ(emitted(Notification::parsingQueryUnsupported, {{"message", std::string("no")}}), "");
    EXPECT_EQ(host.errors, Names{"no"});
}

TEST_F(SignalTest, MissingParametersAndUnknownNamesThrow) {
    EXPECT_THROW(emitted("Unheard", nullptr), std::exception);
    for (const std::string& name :
         {Notification::databaseServerChanged, Notification::componentFocusChanged,
          Notification::identifierCandidateChildrenUpdateEnded,
          Notification::topLevelQueryComponentElementModified,
          Notification::parsingQueryUnsupported}) {
        EXPECT_THROW(emitted(name, nullptr), std::out_of_range) << name;
    }
    EXPECT_THROW(emitted(Notification::databaseServerChanged, {{"dbTypeChanged", 1}}),
                 std::out_of_range);
    EXPECT_THROW(emitted(Notification::topLevelQueryComponentElementModified,
                         {{"layer", 0}, {"elements.size", 1}}),
                 std::out_of_range);
}

TEST_F(SignalTest, AReceiverMayDestroyTheEngine) {
    QObject::connect(engine->signalEmitter(), &QBEngineSignalEmitter::uiReset,
                     [this] { engine.destroy(); });
    engine->resetUi();
    EXPECT_EQ(log.text, "reset;");
}

TEST_F(SignalTest, AReceiverMayDestroyTheEngineBetweenTwoNoticesOfOneCall) {
    QObject::connect(engine->signalEmitter(),
                     &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged,
                     [this] { engine.destroy(); });
    OwnedEngine<QBEngine_LINUX> other(DatabaseTypeMySQL);
    other->pushNewLayerTopLevelQueryComponent(nullptr, "sub");
    QObject::connect(other->signalEmitter(),
                     &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged,
                     [&other] { other.destroy(); });
    engine->setDatabaseInfo(DatabaseTypeMySQL, 1);
    other->resetUi();
    EXPECT_EQ(log.text, "layer null;");
}

// ---- event triggers ---------------------------------------------------------------------------

class TriggerTest : public ::testing::Test {
protected:
    using Trigger = QBEventTrigger<int>;

    void add(const QBEventListener& owner, const std::string& name,
             std::function<void()> action = nullptr) {
        trigger->addListener(
            [this, name, action](int value) {
                calls += name + std::to_string(value);
                if (action) action();
            },
            owner.guarantor());
    }

    std::unique_ptr<Trigger> trigger = std::make_unique<Trigger>();
    std::unique_ptr<QBEventListener> listener = std::make_unique<QBEventListener>();
    std::string calls;
};

TEST_F(TriggerTest, FunctionsOfOneOwnerAreCalledInOrderUntilItIsGone) {
    add(*listener, "a");
    add(*listener, "b");
    trigger->fire(1);
    listener.reset();
    trigger->fire(2);
    EXPECT_EQ(calls, "a1b1");
}

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

TEST_F(TriggerTest, AFunctionAddedDuringAFireWaitsForTheNext) {
    bool isAdded = false;
    add(*listener, "a", [&] {
        if (!std::exchange(isAdded, true)) add(*listener, "b");
    });
    trigger->fire(1);
    trigger->fire(2);
    EXPECT_EQ(calls, "a1a2b2");
}

TEST_F(TriggerTest, AFunctionMayDestroyTheTriggerOrAnotherOwner) {
    QBEventListener other;
    add(*listener, "a", [this] { trigger.reset(); });
    add(*listener, "b");
    add(other, "c", [this] { trigger.reset(); });
    trigger->fire(1);
    EXPECT_TRUE(calls == "a1" || calls == "c1") << calls;  // whichever owner comes first
}
