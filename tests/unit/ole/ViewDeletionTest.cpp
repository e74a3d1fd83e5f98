// Deletions below a view that nobody listens to, which it follows in one pass, against a view that
// has a listener and follows them step by step.

#include "ole/oledb/messageTypes.h"
#include "support/Random.h"
#include "support/Views.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>

namespace {

/// Two views of the same entries and tags, also in the unused memory; one has a listener.
class Pair {
public:
    explicit Pair(Random& random) : random_{random} {
        for (int i = static_cast<int>(random_.below(400)); i > 0; --i) {
            append(anyRow());
        }
        onBoth([](ODBViewRep& view) { view.remove(view.count() / 2, view.count() / 3); });
    }
    void play() {
        for (int left = 1 + static_cast<int>(random_.below(60)); left > 0; --left) {
            table_->issueNotification(NotifyMsg{message().c_str()}, recordsDeletedType());
            if (random_.oneIn(30)) {
                onBoth([](ODBViewRep& view) { view.removeTagged(); });
            }
        }
        ASSERT_EQ(fast_->capacity(), slow_->capacity());
        while (fast_->count() < fast_->capacity()) { // the tags of the unused memory
            append(0);
        }
        ASSERT_EQ(shownBy(fast_), shownBy(slow_));
        ASSERT_EQ(tagsOf(fast_), tagsOf(slow_));
    }

private:
    template <class Operate>
    void onBoth(Operate operate) {
        operate(*fast_);
        operate(*slow_);
    }
    int anyRow() {
        static constexpr int odd[] = {INT_MAX, INT_MIN, INT_MIN + 1, -1};
        return random_.oneIn(50) ? random_.pick(odd) : static_cast<int>(random_.below(500));
    }
    void append(int row) {
        const bool tag = random_.oneIn(2);
        onBoth([row, tag](ODBViewRep& view) {
            const bool unused = view.tag(view.append(row)); // keeps what it finds now and then
            view.set_tag(static_cast<unsigned>(view.count() - 1), row % 5 == 0 ? unused : tag);
        });
    }
    /// Rows of a table in one piece or several, upwards or down, or any numbers.
    LightweightString<char> message() {
        std::string text;
        int row = anyRow();
        const unsigned kind = random_.below(4);
        for (unsigned n = random_.oneIn(8) ? random_.below(40) : 1 + random_.below(3); n > 0; --n) {
            text += std::to_string(row) + " ";
            row = kind == 0 || row == INT_MAX ? anyRow() : row + (kind == 1 ? 2 : 1);
        }
        return LightweightString<char>{std::string_view{text}};
    }

    Random& random_;
    std::unique_ptr<oledb> table_ = numberedTable(1);
    ODBView fast_{table_.get()};
    ODBView slow_{table_.get()};
    Tarn::Ptr<Tarn::Guard> listener_ =
        slow_->registerInterest([](const NotifyMsg&) { return 0; }, recordsDeletedType());
};

TEST(ViewDeletion, InOnePassAsStepByStep) {
    forSeeds(3000, [](Random& random) {
        Pair pair{random};
        pair.play();
    });
}

/// While a view deletes the rows of its tagged entries, a listener has it do the same, and throws.
TEST(ViewDeletion, OfTaggedRowsWithinItself) {
    for (const bool looks : {false, true}) {
        const auto table = numberedTable(8);
        const ODBView view{table.get()};
        for (const int row : {0, 7, 1, 6, 5}) {
            view->append(row);
        }
        view->set_tag(0, 1);
        view->set_tag(2, 1);
        int calls = 0;
        const auto listener = table->registerInterest(
            [&](const NotifyMsg&) {
                EXPECT_TRUE(!looks || view->count() > 0);
                if (++calls == 2) {
                    throw std::runtime_error{"listener"};
                }
                EXPECT_THROW(view->deleteTagged(), std::runtime_error);
                return 0;
            },
            recordsDeletedType());
        EXPECT_EQ(view->deleteTagged(), 1);
        EXPECT_EQ(rowsOf(*table), (Rows{{"2"}, {"3"}, {"4"}, {"5"}, {"6"}, {"7"}}));
        EXPECT_EQ(shownBy(view), "5 4 3");
    }
}

} // namespace
