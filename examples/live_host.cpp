// A window of an editor: it shows a log's takes in an order of its own, edits and deletes them, and
// is told by the table what has changed, by whomever. Prints what it hears and what it shows.
// usage: live_host LOG.ale   (writes live.odb in this folder)

#include "misc/diagnostics.h"
#include "ole/interchange/ALE.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "tarn/NotifyMsgTokenIterator.h"

#include <cstdio>
#include <memory>

namespace {

/// Numbers of rows change when rows come and go; their identifiers do not. What a host remembers of
/// a row, it remembers by these.
void identify(oledb& table) {
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        table.set_field(row, Cookie::random(CookieType::Unspecified, 255));
    }
}

class Window {
public:
    /// The table must outlive the window: its view does not keep it alive.
    explicit Window(oledb& table) : table_{table}, view_{&table} {
        deletions_ = table.registerInterest(MethodCallback{this, &Window::hearDeleted},
                                            recordsDeletedType());
        changes_ = table.registerInterest(MethodCallback{this, &Window::hearChanged},
                                          recordsChangedType());
        view_->displayAllRecords();
        sort();
    }

    /// Writes a note to every take that a pattern finds: one notice, however many there are.
    void note(const char* field, const char* pattern, const char* text) {
        tag(field, pattern);
        const auto notes = static_cast<unsigned>(table_.get_fieldnum("Notes"));
        table_.beginUpdate();
        for (unsigned i = 0; i < view_->get_num_records(); ++i) {
            if (view_->get_tag(i) != 0 && view_->set_field(i, notes, text) != 0) {
                table_.addToUpdate(Cookie{view_->get_field(i, "Cookie"), false});
            }
        }
        table_.endUpdate();
    }

    /// Deletes the takes that a pattern finds, from the table and so from every view.
    void drop(const char* field, const char* pattern) {
        tag(field, pattern);
        view_->deleteTagged();
    }

    /// Called when the editor is idle: notices only tell that there is something to do.
    void paintWhenStale() {
        if (!stale_) {
            return;
        }
        stale_ = false;
        for (unsigned i = 0; i < view_->get_num_records(); ++i) {
            std::printf("  %-7s %-4s %s\n", view_->get_field(i, "Name"),
                        view_->get_field(i, "Scene"), view_->get_field(i, "Notes"));
        }
    }

private:
    /// The list of keys stays the caller's, and is not left with the table.
    void sort() {
        int keys[] = {table_.get_fieldnum("Scene"), table_.get_fieldnum("Shot"), -1};
        table_.set_sortfields(keys);
        view_->sort(1, 0);
        table_.set_sortfields(nullptr);
    }

    /// Neither is the query, whose values are patterns.
    void tag(const char* field, const char* pattern) {
        const std::unique_ptr<dbrecord> query{table_.make_dummy_record()};
        query->set_field(table_.get_fieldnum(field), pattern);
        table_.set_query(query.get());
        std::printf("%s=%s: %d takes\n", field, pattern, view_->tag_matching_records(0));
        table_.set_query(nullptr);
    }

    /// The numbers are those of the rows as they were before, each followed by a blank.
    int hearDeleted(const NotifyMsg& msg) {
        std::printf("heard: rows deleted:");
        for (NotifyMsgTokenIterator it{msg}; it.valid(); ++it) {
            std::printf(" %d", it.number());
        }
        std::printf("\n");
        stale_ = true;
        return 0;
    }

    int hearChanged(const NotifyMsg& msg) {
        std::printf("heard: rows changed:");
        if (const auto* const changed = msg.payload<WrappedData<CookieVec>>()) {
            for (const Cookie& cookie : changed->data()) {
                const int row = table_.getRowIndexByID(cookie);
                std::printf(" %s", row < 0 ? "?" : table_.get_field(unsigned(row), "Name"));
            }
        }
        std::printf("\n");
        stale_ = true;
        return 0;
    }

    oledb& table_;
    ODBView view_;
    Tarn::Ptr<Tarn::Guard> deletions_; // listening ends when these go, with the window
    Tarn::Ptr<Tarn::Guard> changes_;
    bool stale_ = true;
};

} // namespace

int main(int argc, char** argv) {
    const auto report = [](std::string_view text) {
        std::fprintf(stderr, "ole: %.*s", int(text.size()), text.data());
    };
    Tarn::setLogSink(report);
    Tarn::setConsoleSink(report);

    using enum DBFieldTypes::eType;
    const DBFieldDesc columns[] = {{"Cookie", TEXT}, {"Name", TEXT},  {"Scene", TEXT},
                                   {"Shot", TEXT},   {"Notes", TEXT}, {}};
    oledb table{columns};
    if (argc != 2 || !ALE::fillODB(table, pathFromBytes(argv[1]))) {
        std::fputs("usage: live_host LOG.ale\n", stderr);
        return 1;
    }
    identify(table);

    Window window{table};
    window.paintWhenStale();
    window.note("Scene", "31C", "Retake tomorrow");
    window.drop("Notes", "false start");
    window.paintWhenStale();

    table.set_filename(L"live.odb");
    if (table.save_text() == 0) {
        std::fputs("live.odb cannot be written\n", stderr);
        return 1;
    }
    table.clear_changed();
    return 0;
}
