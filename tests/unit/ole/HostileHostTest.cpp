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
    }

    /// Whether a listener reacted.
    [[nodiscard]] bool reacted() const { return heard_ >= notice_; }

    void expectWhole() {
        if (!table) {
            for (const ODBView& view : {first, second}) {
                ASSERT_EQ(view->source(), nullptr);
            }
            return;
        }
        std::vector<dbrecord*> rows;
        for (unsigned i = 0; i < table->get_num_records(); ++i) {
            rows.push_back(table->get_record(i));
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
        reaction_ = [](Host&) {};
        table->delete_records(0, 1); // everybody still follows
        ASSERT_EQ(second ? second->get_num_records() : 0, second ? table->get_num_records() : 0);
    }

    std::unique_ptr<oledb> table = makeTable({"Tag", "Cookie"}, Rows(12));
    ODBView first;
    ODBView upper;
    ODBView second;
    std::vector<Guard> guards;

private:
    static std::vector<dbrecord*> recordsOf(const ODBView& view) {
        std::vector<dbrecord*> records;
        for (int i = 0; i < view->count(); ++i) {
            records.push_back((*view)[i]);
        }
        return records;
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
};

struct Operation {
    const char* name;
    void (*run)(Host&);
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
    {"through the chain", [](Host& h) { h.upper->removeRecordsFromBaseView(0, 5); }},
    {"removeTagged", [](Host& h) { h.upper->removeTagged(); }},
    {"removeNonTagged", [](Host& h) { h.first->removeNonTagged(); }},
    {"deleteRecords", [](Host& h) { h.upper->deleteRecords(0, 4); }},
    {"deleteTagged", [](Host& h) { h.upper->deleteTagged(); }},
    {"delete_tagged_records", [](Host& h) { h.first->delete_tagged_records(); }},
    {"set_show_tags_only", [](Host& h) { h.first->set_show_tags_only(1); }},
    {"displayAllRecords", [](Host& h) { h.first->displayAllRecords(); }},
    {"the tags of the base", [](Host& h) { h.first->displayAllRecordsWithBaseTagStatus(); }},
    {"the field Tag", [](Host& h) { h.first->setupViewTagsFromOledbTagField(); }},
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
    {"fills a view again", [](Host& h) { h.first->displayAllRecords(); }},
    {"drops views", [](Host& h) { h.first = h.upper = ODBView{}; }},
    {"drops the view behind", [](Host& h) { h.second = ODBView{}; }},
    {"deregisters all", [](Host& h) { h.guards.clear(); }},
    {"registers",
     [](Host& h) {
         h.guards.push_back(
             h.table->registerInterest([](const NotifyMsg&) { return 0; }, recordsDeletedType()));
     }},
    {"adds a column",
     [](Host& h) {
         h.table->addField({"New", DBFieldTypes::TEXT});
     }},
    {"destroys the table", [](Host& h) { h.table.reset(); }},
};

TEST(HostileHost, ViewsFollowWhateverListenersDo) {
    int reactions = 0;
    for (const Operation& operation : operations) {
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
                reactions += host.reacted() ? 1 : 0;
                ASSERT_EQ(thrown, hostility.throws && host.reacted());
                ASSERT_NO_FATAL_FAILURE(host.expectWhole())
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
                    ASSERT_EQ(view ? valuesOf(view) : "", !view ? "" : table ? "0 1 2" : "- - -");
                }
            }
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

} // namespace
