// Who is called, and in which order, while listeners register, leave, issue again, throw or destroy
// the notifier: random scenes run against a plain model that copies the list of listeners before
// every round. What the model cannot show stands in cases of its own.

#include "tarn/Notifier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <exception>
#include <malloc.h>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int typeA = 1;
constexpr int typeB = 2;

using GuardPtr = Tarn::Ptr<Tarn::Guard>;

TEST(Notifier, DroppedGuardLetsGoOfTheListener) {
    const auto kept = std::make_shared<int>(7);
    auto notifier = std::make_unique<Notifier>();
    GuardPtr guard;
    guard = notifier->registerInterest(
        [&guard, kept](const NotifyMsg&) {
            guard.reset();
            EXPECT_EQ(*kept, 7); // what is being executed stays whole
            EXPECT_EQ(kept.use_count(), 2);
            return 0;
        },
        typeA);
    EXPECT_EQ(kept.use_count(), 2);
    notifier->issueNotification(NotifyMsg{}, typeA);
    EXPECT_EQ(kept.use_count(), 1);
    guard = notifier->registerInterest([kept](const NotifyMsg&) { return 0; }, typeA);
    const GuardPtr second = guard;
    guard.reset();
    EXPECT_EQ(kept.use_count(), 2) << "two owners of one registration";
    notifier.reset();
    EXPECT_EQ(kept.use_count(), 1);
}

/// A long session delivers millions of notifications.
TEST(Notifier, MemoryStaysTheSameWhileListenersComeAndGo) {
    Notifier notifier;
    GuardPtr guard;
    const NotifyCallback listener = [&](const NotifyMsg&) {
        guard.reset();
        guard = notifier.registerInterest(listener, typeA);
        notifier.issueNotification(NotifyMsg{}, typeB);
        return 0;
    };
    guard = notifier.registerInterest(listener, typeA);
    const auto play = [&notifier](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            notifier.issueNotification(NotifyMsg{}, typeA);
            notifier.registerInterest([](const NotifyMsg&) { return 0; }, typeA).reset();
        }
        return mallinfo2().uordblks;
    };
    const std::size_t before = play(1000);
    EXPECT_LT(play(5000), before + 5000);
}

TEST(Notifier, ListenerMayOwnOtherGuardsAndTheNotifier) {
    struct Owner {
        std::unique_ptr<Notifier> notifier = std::make_unique<Notifier>();
        std::vector<GuardPtr> guards;
    };
    auto owner = std::make_shared<Owner>();
    Notifier& inner = *owner->notifier;
    owner->guards.push_back(inner.registerInterest([](const NotifyMsg&) { return 0; }, typeA));
    GuardPtr last = inner.registerInterest([owner](const NotifyMsg&) { return 0; }, typeA);
    owner.reset();
    inner.issueNotification(NotifyMsg{}, typeA);
    last.reset(); // destroys the notifier and the other guard while it deregisters
    EXPECT_FALSE(last);
}

TEST(Notifier, DeliversTheMessageItself) {
    struct Reader {
        int take(const NotifyMsg& msg) {
            seen = msg.payload<WrappedData<std::vector<int>>>();
            other = msg.payload<WrappedData<int>>() != nullptr;
            text = msg.text();
            return 1;
        }
        const WrappedData<std::vector<int>>* seen = nullptr;
        bool other = true;
        std::string text = "?";
    };
    Notifier notifier;
    EXPECT_FALSE(notifier.registerInterest(NotifyCallback{}, typeA));
    Reader reader;
    const GuardPtr guard =
        notifier.registerInterest(MethodCallback<Reader>{&reader, &Reader::take}, typeA);
    const Tarn::Ptr<WrappedData<std::vector<int>>> data{
        new WrappedData<std::vector<int>>{std::vector<int>{3, 4}}};
    notifier.issueNotification(NotifyMsg{Tarn::Ptr<Tarn::Counted>{data}}, typeA);
    EXPECT_EQ(reader.seen, data.get());
    EXPECT_FALSE(reader.other);
    EXPECT_EQ(reader.text, "");
}

/// A round calls those who are registered when it begins and still are when their turn comes, until
/// the notifier is gone. A round within it of the same type waits until that has called all; what
/// one of them throws waits, too.
class ModelNotifier {
public:
    struct Entry {
        NotifyCallback listener;
        int type;
        bool registered = true;
    };
    using Handle = std::shared_ptr<Entry>;

    ~ModelNotifier() { state_->alive = false; }
    Handle registerInterest(NotifyCallback listener, int type) {
        entries_.push_back(std::make_shared<Entry>(Entry{std::move(listener), type}));
        return entries_.back();
    }
    static void drop(Handle& handle) {
        if (handle) {
            handle->registered = false;
        }
        handle.reset();
    }
    [[nodiscard]] bool hasListeners(int type) const {
        return std::any_of(entries_.begin(), entries_.end(), [type](const Handle& entry) {
            return entry->registered && entry->type == type;
        });
    }
    void issueNotification(const NotifyMsg& msg, int type) {
        const std::shared_ptr<State> state = state_;
        Round own{msg, type, {entries_.begin(), entries_.end()}, {}};
        state->rounds.push_back(&own);
        tellTheRest(type);
        state->rounds.pop_back();
        if (own.thrown) {
            std::rethrow_exception(own.thrown);
        }
    }

    void tellTheRest(int type) {
        const std::shared_ptr<State> state = state_;
        for (std::size_t i = 0, n = state->rounds.size(); i < n; ++i) {
            if (state->rounds[i]->type == type) {
                finish(*state->rounds[i], *state);
            }
        }
    }

private:
    struct Round {
        const NotifyMsg& msg;
        int type;
        std::deque<Handle> waiting;
        std::exception_ptr thrown;
    };
    struct State {
        bool alive = true;
        std::vector<Round*> rounds;
    };
    static void finish(Round& round, const State& state) {
        while (state.alive && !round.waiting.empty()) {
            const Handle entry = round.waiting.front();
            round.waiting.pop_front();
            try {
                if (entry->registered && entry->type == round.type) {
                    entry->listener(round.msg);
                }
            } catch (...) {
                round.thrown = round.thrown ? round.thrown : std::current_exception();
            }
        }
    }

    std::vector<Handle> entries_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

class RealNotifier : public Notifier {
public:
    using Handle = GuardPtr;
    static void drop(Handle& handle) { handle.reset(); }
};

struct Thrown {};

/// One random scene. What a listener does depends only on the seed and on how many steps were made
/// before, so two kinds of notifier see the same scene as long as they behave alike.
template <class Kind>
class Scene {
public:
    explicit Scene(unsigned seed) : random_{seed} {}

    std::string play() {
        for (int i = 0; i < 40; ++i) {
            try {
                act();
            } catch (const Thrown&) {
                note("caught");
            }
            if (!notifier_) {
                notifier_ = std::make_unique<Kind>();
            }
        }
        return record_;
    }

private:
    static constexpr int deepest = 5;
    static constexpr int longest = 400;

    unsigned pick(unsigned n) { return static_cast<unsigned>(random_() % n); }
    int pickType() { return pick(4) == 0 ? typeB : typeA; }
    void note(const std::string& text) {
        record_ += std::string(static_cast<std::size_t>(depth_), ' ') + text + "\n";
    }

    void act() {
        if (++steps_ > longest) {
            return;
        }
        const unsigned what = pick(100);
        if (what < 35) {
            join();
        } else if (what < 60) {
            leave(pick(static_cast<unsigned>(handles_.size()) + 1));
        } else if (what < 90) {
            issue();
        } else if (what < 93) {
            tellTheRest();
        } else if (what < 96) {
            askForListeners();
        } else if (what < 98) {
            end();
        } else if (depth_ > 0) {
            throw Thrown{};
        }
    }
    void join() {
        if (!notifier_) {
            return;
        }
        const std::size_t id = handles_.size();
        handles_.emplace_back();
        handles_[id] = notifier_->registerInterest(
            [this, id](const NotifyMsg&) { return called(id); }, pickType());
        note("join " + std::to_string(id));
    }
    void leave(std::size_t id) {
        if (id < handles_.size()) {
            note("leave " + std::to_string(id));
            Kind::drop(handles_[id]);
        }
    }
    void issue() {
        if (notifier_ && depth_ < deepest) {
            const int type = pickType();
            note("issue " + std::to_string(type));
            notifier_->issueNotification(NotifyMsg{}, type);
        }
    }
    void tellTheRest() {
        if (notifier_) {
            note("tell the rest");
            notifier_->tellTheRest(pickType());
        }
    }
    void askForListeners() {
        if (notifier_) {
            note(notifier_->hasListeners(typeA) ? "some" : "none");
        }
    }
    void end() {
        note("end");
        notifier_.reset();
    }
    int called(std::size_t id) {
        note("call " + std::to_string(id));
        const Level level{depth_};
        for (unsigned n = pick(4); n > 0; --n) {
            pick(6) == 0 ? leave(id) : act();
        }
        return 0;
    }

    struct Level {
        explicit Level(int& depth) : depth_{depth} { ++depth_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --depth_; }
        int& depth_;
    };

    std::mt19937 random_;
    std::unique_ptr<Kind> notifier_ = std::make_unique<Kind>();
    std::vector<typename Kind::Handle> handles_;
    std::string record_;
    int depth_ = 0;
    int steps_ = 0;
};

TEST(NotifierRandom, SameAsThePlainModel) {
    std::size_t calls = 0;
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        const std::string expected = Scene<ModelNotifier>{seed}.play();
        ASSERT_EQ(Scene<RealNotifier>{seed}.play(), expected) << "seed " << seed;
        for (std::size_t at = expected.find("call"); at != std::string::npos;
             at = expected.find("call", at + 1)) {
            ++calls;
        }
    }
    EXPECT_GT(calls, 100000U) << "the scenes have become too quiet to show anything";
}

} // namespace
