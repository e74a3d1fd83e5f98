// Deletion of tagged rows under views that stand on the table, and insertion.

#include "Measure.h"
#include "suites.h"
#include "Tables.h"

#include "ole/oledb/messageTypes.h"
#include "ole/oledb/ODBView.h"

#include <string>
#include <vector>

namespace bench {

namespace {

struct Deletion {
    unsigned each; ///< every so many rows one goes
    unsigned views;
    bool heard; ///< somebody listens to the table and to every view
};

/// A table with tagged rows, the views on it that show everything, and a listener that counts.
class Scene {
public:
    Scene(unsigned rows, const Deletion& deletion) : table_{freshTable(rows)} {
        for (unsigned i = 0; i < rows; i += deletion.each) {
            table_->set_tag(i, 1);
        }
        for (unsigned i = 0; i < deletion.views; ++i) {
            views_.emplace_back(table_.get());
            views_.back()->displayAllRecords();
        }
        if (deletion.heard) {
            listen(*table_);
            for (const ODBView& view : views_) {
                listen(*view);
            }
        }
    }
    /// Deletes and looks at every view, for a view may put its part off until then.
    [[nodiscard]] bool deleteTagged(unsigned rows, const Deletion& deletion) {
        const unsigned tagged = (rows + deletion.each - 1) / deletion.each;
        bool right = table_->delete_tagged_records() == static_cast<int>(tagged);
        for (const ODBView& view : views_) {
            right = right && view->get_num_records() == rows - tagged && view->sourceRow(0) == 0;
        }
        return right;
    }
    [[nodiscard]] unsigned notices() const noexcept { return notices_; }

private:
    void listen(Notifier& notifier) {
        guards_.push_back(notifier.registerInterest(
            [this](const NotifyMsg&) {
                ++notices_;
                return 0;
            },
            recordsDeletedType()));
    }

    unsigned notices_ = 0;
    std::unique_ptr<oledb> table_;
    std::vector<ODBView> views_;
    std::vector<Tarn::Ptr<Tarn::Guard>> guards_;
};

void deleteTagged(benchmark::State& state, unsigned rows, const Deletion& deletion) {
    unsigned notices = 0;
    measure(
        state, rows, [&] { return std::make_unique<Scene>(rows, deletion); },
        [&](const std::unique_ptr<Scene>& scene) {
            const bool right = scene->deleteTagged(rows, deletion);
            notices = scene->notices();
            return right;
        });
    state.counters["notices"] = notices;
}

/// Takes every tenth entry out of a view of everything.
void removeTagged(benchmark::State& state, unsigned rows) {
    const auto tagged = [=] {
        ODBView view{&sharedTable(rows)};
        view->displayAllRecords();
        for (unsigned i = 0; i < rows; i += 10) {
            view->set_tag(i, 1);
        }
        return view;
    };
    measure(state, rows, tagged, [=](ODBView& view) {
        return view->removeTagged() == static_cast<int>((rows + 9) / 10);
    });
}

/// Deletes the rows of every tenth entry of a view of everything, in the rows' order or in that of
/// a text.
void deleteThroughView(benchmark::State& state, unsigned rows, bool sorted) {
    struct Shown {
        std::unique_ptr<oledb> table;
        ODBView view;
    };
    const auto tagged = [=] {
        auto table = freshTable(rows);
        ODBView view{table.get()};
        view->displayAllRecords();
        if (sorted) {
            view->set_sortfield(view->get_fieldnum("Note"));
            view->sort(1, 0);
        }
        for (unsigned i = 0; i < rows; i += 10) {
            view->set_tag(i, 1);
        }
        return Shown{std::move(table), std::move(view)};
    };
    measure(state, rows, tagged, [=](Shown& shown) {
        const int deleted = static_cast<int>((rows + 9) / 10);
        return shown.view->deleteTagged() == deleted &&
               shown.view->count() == static_cast<int>(rows) - deleted;
    });
}

void deleteSqlite(benchmark::State& state, unsigned rows) {
    const auto fresh = [=] {
        return std::make_unique<Sqlite>(Sqlite::withCsv(workloadFile(Form::Csv, rows)));
    };
    measure(state, rows, fresh, [=](const std::unique_ptr<Sqlite>& db) {
        db->run("DELETE FROM log WHERE (rowid - 1) % 10 = 0");
        return db->rows() == rows - (rows + 9) / 10;
    });
}

void append(benchmark::State& state, unsigned rows) {
    const DBFieldDesc fields[] = {{"Name", DBFieldTypes::TEXT}, {}};
    measure(
        state, rows, [&] { return std::make_unique<oledb>(fields); },
        [=](const std::unique_ptr<oledb>& table) {
            for (unsigned i = 0; i < rows; ++i) {
                table->add_records(1);
            }
            return table->get_num_records() == rows;
        });
}

/// Rows are inserted before every tenth row, from the first on.
void insert(benchmark::State& state, unsigned rows) {
    const unsigned inserted = rows / 10;
    measure(
        state, rows, [=] { return freshTable(rows); },
        [=](const std::unique_ptr<oledb>& table) {
            for (unsigned i = 0; i < inserted; ++i) {
                table->insert_records(i * 11, 1);
            }
            return table->get_num_records() == rows + inserted;
        });
}

} // namespace

void addDeletion() {
    for (const unsigned views : {0U, 1U, 2U, 4U}) {
        for (const unsigned each : {10U, 2U}) {
            for (const bool heard : {false, true}) {
                const std::string name = "delete" + std::to_string(each) + "-views" +
                                         std::to_string(views) + (heard ? "-heard" : "");
                add(name, "ours", [=](benchmark::State& state, unsigned rows) {
                    deleteTagged(state, rows, {each, views, heard});
                });
            }
        }
    }
    add("delete10-views0", "sqlite", deleteSqlite);
    add("delete10-by-view", "ours",
        [](benchmark::State& state, unsigned rows) { deleteThroughView(state, rows, false); });
    add("delete10-by-sorted-view", "ours",
        [](benchmark::State& state, unsigned rows) { deleteThroughView(state, rows, true); });
    add("remove10", "ours", removeTagged);
    add("append", "ours", append);
    add("insert", "ours", insert);
}

} // namespace bench
