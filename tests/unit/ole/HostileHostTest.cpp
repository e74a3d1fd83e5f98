// Listeners that throw, delete, drop views, come and go while they are told: whatever they do, what
// they throw arrives at the caller, every view that stands on the table shows the records that it
// showed, without those that are gone, and the table is whole. Each operation that notifies is
// tried with each reaction, at each notice that it sends and at each place where one can listen.

#include "ole/oledb/messageTypes.h"
#include "ole/oledb/ODBViewCursor.h"
#include "support/Views.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <set>

namespace {

struct Thrown {};
using Guard = Tarn::Ptr<Tarn::Guard>;

/// A table whose views stand beside and upon each other, with a listener before all views, one
/// behind them, and one on each.
class Host {
public:
    using Reaction = void (*)(Host&);
    enum Place { Early, OnFirst, OnUpper, Late, Places };

    Host(Place place, int notice, Reaction reaction)
        : place_{place}, notice_{notice}, reaction_{reaction} {
        for (unsigned row = 0; row < 12; ++row) {
            table->set_field(row, cookieNo(row));
            table->set_field(row, 0, row % 3 == 1 ? "1" : "0");
            table->set_tag(row, row % 3 == 1 ? 1 : 0);
        }
        all_ = rowsOf(*table);
        listen(*table, Early);
        first = viewOf(*table, {11, 0, 1, 2, 4, 7, 9, 3}, "00111010");
        upper = viewOver(first);
        upper->set_tag(2, 1);
        upper->set_tag(5, 1);
        listen(*first, OnFirst);
        listen(*upper, OnUpper);
        second = viewOfAll(*table);
        listen(*table, Late);
        before_ = recordsOf(second);
        firstBefore_ = recordsOf(first);
    }

    /// Whether a listener reacted.
    [[nodiscard]] bool reacted() const { return heard_ >= notice_; }

    /// What a view shows, as rows of the table at first.
    [[nodiscard]] std::vector<std::ptrdiff_t> shownBy(const ODBView& view) const {
        std::vector<std::ptrdiff_t> rows;
        for (dbrecord* const record : recordsOf(view)) {
            rows.push_back(std::find(all_.begin(), all_.end(), record) - all_.begin());
        }
        return rows;
    }

    /// What the first view must still show are the rows of `kept` that are not gone.
    void expectWhole(const std::set<std::ptrdiff_t>& kept) {
        if (!table) {
            for (const ODBView& view : {first, second}) {
                ASSERT_EQ(view->source(), nullptr);
            }
            return;
        }
        const std::vector<dbrecord*> rows = rowsOf(*table);
        for (unsigned i = 0; i < rows.size(); ++i) {
            const Cookie cookie{table->get_field(i, 1), false};
            ASSERT_EQ(table->getRowIndexByID(cookie), static_cast<int>(i));
        }
        for (const ODBView& view : {first, second}) {
            for (dbrecord* const record : view ? recordsOf(view) : rows) {
                ASSERT_NE(std::find(rows.begin(), rows.end(), record), rows.end());
            }
        }
        if (second) { // nothing was taken out of it but what was deleted
            std::erase_if(before_, [&](dbrecord* record) {
                return std::find(rows.begin(), rows.end(), record) == rows.end();
            });
            ASSERT_EQ(recordsOf(second), before_);
        }
        if (first) {
            ASSERT_NO_FATAL_FAILURE(filled < 2 ? expectFirst(rows, kept) : expectFilled(rows));
        }
        for (int i = 0; upper && i < upper->count(); ++i) { // it may number too low, not too high
            const int row = upper->sourceRow(i);
            ASSERT_LT(row, first->count());
            ASSERT_TRUE(row < 0 ? (*upper)[i] == nullptr : has(rows, (*upper)[i])) << "row " << row;
        }
        reaction_ = [](Host&) {};
        table->delete_records(0, 1); // everybody still follows
        ASSERT_EQ(second ? second->get_num_records() : 0, second ? table->get_num_records() : 0);
    }

    std::unique_ptr<oledb> table = makeTable({"Tag", "Cookie"}, Rows(12));
    ODBView first;
    ODBView upper;
    ODBView second;
    std::vector<Guard> guards;
    int filled = 0; ///< how often the first view was on the way; within another, it doubles
    int taken = 0;  ///< how many entries of the first view a listener took out

private:
    static std::vector<dbrecord*> rowsOf(const oledb& table) {
        std::vector<dbrecord*> rows;
        for (unsigned i = 0; i < table.get_num_records(); ++i) {
            rows.push_back(table.get_record(i));
        }
        return rows;
    }
    static std::vector<dbrecord*> recordsOf(const ODBView& view) {
        std::vector<dbrecord*> records;
        for (int i = 0; i < view->count(); ++i) {
            records.push_back((*view)[i]);
        }
        return records;
    }
    /// In the order that the view had, or where it was filled again in the table's, each once.
    void expectFirst(const std::vector<dbrecord*>& rows, const std::set<std::ptrdiff_t>& kept) {
        const std::vector<dbrecord*> shown = recordsOf(first);
        const auto follows = [&shown](const std::vector<dbrecord*>& order) {
            auto at = order.begin();
            return std::all_of(shown.begin(), shown.end(), [&](dbrecord* record) {
                at = std::find(at, order.end(), record);
                return at != order.end() && (++at, true);
            });
        };
        ASSERT_TRUE(follows(firstBefore_) || (filled != 0 && follows(rows)));
        const auto lost = std::count_if(kept.begin(), kept.end(), [&](std::ptrdiff_t row) {
            dbrecord* const record = all_[static_cast<std::size_t>(row)];
            return has(rows, record) && !has(shown, record);
        });
        ASSERT_LE(lost, taken);
    }
    void expectFilled(const std::vector<dbrecord*>& rows) {
        const std::vector<dbrecord*> shown = recordsOf(first);
        for (dbrecord* const record : rows) {
            ASSERT_EQ(std::count(shown.begin(), shown.end(), record), filled);
        }
    }
    static bool has(const std::vector<dbrecord*>& records, dbrecord* record) {
        return std::find(records.begin(), records.end(), record) != records.end();
    }
    void listen(Notifier& source, Place place) {
        for (const int type : {recordsDeletedType(), recordsChangedType()}) {
            guards.push_back(source.registerInterest(
                [this, place](const NotifyMsg&) {
                    if (place == place_ && ++heard_ == notice_) {
                        reaction_(*this);
                    }
                    return 0;
                },
                type));
        }
    }

    Place place_;
    int notice_;
    Reaction reaction_;
    int heard_ = 0;
    std::vector<dbrecord*> before_;
    std::vector<dbrecord*> firstBefore_;
    std::vector<dbrecord*> all_;
};

struct Operation {
    const char* name;
    void (*run)(Host&);
    bool fills = false;
    bool throughUpper = false; ///< whose entries a deletion may renumber too low
    bool goesOn = false;       ///< with entries of the first view, also with new ones
};
const Operation operations[] = {
    {"table, one", [](Host& h) { h.table->delete_records(4, 1); }},
    {"table, some", [](Host& h) { h.table->delete_records(1, 4); }},
    {"table, tagged", [](Host& h) { h.table->delete_tagged_records(); }},
    {"table, a batch",
     [](Host& h) {
         h.table->beginUpdate();
         h.table->addToUpdate(cookieNo(3));
         h.table->endUpdate();
     }},
    {"remove", [](Host& h) { h.first->remove(1, 3); }},
    {"through the chain", [](Host& h) { h.upper->removeRecordsFromBaseView(0, 5); }, false, true},
    {"removeTagged", [](Host& h) { h.upper->removeTagged(); }, false, true},
    {"removeNonTagged", [](Host& h) { h.first->removeNonTagged(); }, false, false, true},
    {"deleteRecords", [](Host& h) { h.upper->deleteRecords(0, 4); }, false, true},
    {"deleteTagged", [](Host& h) { h.upper->deleteTagged(); }, false, true},
    {"delete_tagged_records", [](Host& h) { h.first->delete_tagged_records(); }, false, false,
     true},
    {"set_show_tags_only", [](Host& h) { h.first->set_show_tags_only(1); }, false, false, true},
    {"displayAllRecords", [](Host& h) { h.first->displayAllRecords(); }, true},
    {"the tags of the base", [](Host& h) { h.first->displayAllRecordsWithBaseTagStatus(); }, true},
    {"the field Tag", [](Host& h) { h.first->setupViewTagsFromOledbTagField(); }, true},
    {"a cursor",
     [](Host& h) {
         ODBViewCursor cursor{h.first, 2};
         cursor.remove();
     }},
};

struct Hostility {
    const char* name;
    Host::Reaction react;
    bool throws = false;
    bool changesNothing = false; ///< of what the first view and those upon it show
};
const Hostility hostilities[] = {
    {"throws", [](Host&) { throw Thrown{}; }, true},
    {"deletes rows", [](Host& h) { h.table->delete_records(2, 2); }},
    {"deletes the last",
     [](Host& h) { h.table->delete_records(h.table->get_num_records() - 1, 1); }},
    {"deletes all", [](Host& h) { h.table->delete_records(0, 100); }},
    {"deletes, then throws",
     [](Host& h) {
         h.table->delete_records(0, 1);
         throw Thrown{};
     },
     true},
    {"deletes through a view", [](Host& h) { h.second->deleteRecords(1, 3); }},
    {"fills a view again",
     [](Host& h) {
         h.first->displayAllRecords();
         ++h.filled;
     }},
    {"takes an entry out",
     [](Host& h) {
         h.taken += h.first->count() > 0 ? 1 : 0;
         h.first->remove(0, 1);
     }},
    {"drops views", [](Host& h) { h.first = h.upper = ODBView{}; }},
    {"drops the view behind", [](Host& h) { h.second = ODBView{}; }, false, true},
    {"deregisters all", [](Host& h) { h.guards.clear(); }, false, true},
    {"registers",
     [](Host& h) {
         h.guards.push_back(
             h.table->registerInterest([](const NotifyMsg&) { return 0; }, recordsDeletedType()));
     },
     false, true},
    {"adds a column",
     [](Host& h) {
         h.table->addField({"New", DBFieldTypes::TEXT});
     },
     false, true},
    {"destroys the table", [](Host& h) { h.table.reset(); }},
};

TEST(HostileHost, ViewsFollowWhateverListenersDo) {
    int reactions = 0;
    for (const Operation& operation : operations) {
        Host calm{Host::Early, 0, [](Host&) {}};
        operation.run(calm);
        const std::vector<std::ptrdiff_t> calmFirst = calm.shownBy(calm.first);
        const std::set<std::ptrdiff_t> kept{calmFirst.begin(), calmFirst.end()};
        for (const Hostility& hostility : hostilities) {
            for (int scene = 0; scene < Host::Places * 4; ++scene) {
                const auto place = static_cast<Host::Place>(scene / 4);
                Host host{place, scene % 4 + 1, hostility.react};
                bool thrown = false;
                try {
                    operation.run(host);
                } catch (const Thrown&) {
                    thrown = true;
                }
                const bool mayLose = operation.throughUpper ||
                                     (operation.goesOn && host.filled + host.taken != 0) ||
                                     (operation.fills && thrown);
                host.filled += operation.fills ? 1 : 0;
                reactions += host.reacted() ? 1 : 0;
                ASSERT_EQ(thrown, hostility.throws && host.reacted());
                if (hostility.changesNothing) {
                    ASSERT_EQ(host.shownBy(host.first), calmFirst) << operation.name;
                    ASSERT_EQ(host.shownBy(host.upper), calm.shownBy(calm.upper)) << operation.name;
                }
                ASSERT_NO_FATAL_FAILURE(
                    host.expectWhole(mayLose ? std::set<std::ptrdiff_t>{} : kept))
                    << operation.name << "; a listener " << hostility.name << " at place " << place
                    << ", notice " << scene % 4 + 1;
            }
        }
    }
    EXPECT_GT(reactions, 700) << "hardly anybody was told anything";
}

/// Handles on a chain or a tree of views, and their table, go in every order.
TEST(HostileHost, ViewsAndTheirTableGoInEveryOrder) {
    constexpr int views = 5;
    const int shapes[][views] = {{-1, 0, 1, 2, 3}, {-1, 0, 0, 1, 1}, {-1, -1, 0, 0, 1}};
    for (const auto& bases : shapes) {
        std::vector<int> order(views + 1);
        std::iota(order.begin(), order.end(), 0);
        do {
            auto table = numberedTable(3);
            std::vector<ODBView> handles;
            for (const int base : bases) {
                handles.push_back(base < 0 ? viewOfAll(*table)
                                           : viewOver(handles[static_cast<std::size_t>(base)]));
            }
            for (const int next : order) {
                if (next == views) {
                    table.reset();
                } else {
                    handles[static_cast<std::size_t>(next)] = ODBView{};
                }
                for (const ODBView& view : handles) {
                    ASSERT_EQ(view ? valuesOf(view) : "", view && table ? "0 1 2" : "");
                }
            }
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

} // namespace
