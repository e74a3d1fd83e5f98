#pragma once

// Views as plain vectors, each operation in its plainest form and under the module's name.

#include "model/GroundModel.h"

#include <climits>
#include <cstdint>
#include <sstream>

class ViewModel : public SourceModel, public std::enable_shared_from_this<ViewModel> {
public:
    explicit ViewModel(GroundModel& table) : db_{&table} { fromTable_ = hear(table); }

    /// One that leads back here is not taken.
    void baseView(const std::shared_ptr<ViewModel>& base) {
        for (const ViewModel* level = base.get(); level; level = level->base_.get()) {
            if (level == this) {
                return;
            }
        }
        if (base == base_) {
            return;
        }
        clear();
        fromBase_ = base ? hear(*base) : nullptr;
        base_ = base;
    }
    [[nodiscard]] ViewModel* baseView() const { return base_.get(); }

    // -- the index --

    void clear() {
        entries_.clear();
        count_ = 0;
    }
    void sizeIndexFor(int n) {
        if (n == 0) {
            entries_.clear();
            return;
        }
        const int need = std::max(n, 20);
        int size = capacity();
        if (size >= need) {
            if (need * 2 >= size) {
                return;
            }
            size /= 2;
        } else {
            size = std::max(size * 2, need);
        }
        if (size == capacity()) {
            return;
        }
        const int copied = size < count_ ? need : count_;
        std::vector<Entry> fresh(static_cast<std::size_t>(size));
        std::copy_n(entries_.begin(), std::min(copied, capacity()), fresh.begin());
        entries_ = fresh;
    }
    int append(int row) {
        followToTheEnd();
        return put(row);
    }
    int put(int row) {
        sizeIndexFor(count_ + 1);
        at(count_).row = static_cast<std::uint32_t>(row);
        return count_++;
    }
    void buildIndex() {
        followToTheEnd();
        count_ = 0;
        for (unsigned i = 0; i < source().get_num_records(); ++i) {
            put(static_cast<int>(i));
        }
    }
    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] int capacity() const { return static_cast<int>(entries_.size()); }
    [[nodiscard]] int sourceRow(int i) const {
        return isPosition(i) ? static_cast<int>(at(i).row) : 0;
    }
    int baseIndex(int i) override { return isPosition(i) ? source().baseIndex(sourceRow(i)) : 0; }
    [[nodiscard]] int findViewIndexForBaseRow(unsigned long row) const {
        int i = 0;
        while (isPosition(i) && static_cast<unsigned long>(long{sourceRow(i)}) != row) {
            ++i;
        }
        return isPosition(i) ? i : -1;
    }
    [[nodiscard]] std::optional<unsigned> record(unsigned i) const override {
        return isPosition(static_cast<int>(i)) ? source().record(at(static_cast<int>(i)).row)
                                               : std::nullopt;
    }
    [[nodiscard]] bool allResolve() const {
        int i = 0;
        while (i < count_ && record(static_cast<unsigned>(i))) {
            ++i;
        }
        return i == count_;
    }
    [[nodiscard]] int find(std::optional<unsigned> row) const {
        for (int i = 0; row && i < count_; ++i) {
            if (record(static_cast<unsigned>(i)) == row) {
                return i;
            }
        }
        return -1;
    }
    /// Takes over an order, or tags, that the rules leave open.
    template <class View>
    void adopt(View& other) {
        for (int i = 0; isPosition(i); ++i) {
            at(i).row = static_cast<std::uint32_t>(other.sourceRow(i));
            at(i).tag = other.tag(i);
        }
    }

    // -- tags --

    bool tag(int i) { return isPosition(i) && at(i).tag; }
    int set_tag(unsigned i, int v) override {
        if (!isPosition(static_cast<int>(i))) {
            return 0;
        }
        at(static_cast<int>(i)).tag = v != 0;
        return 1;
    }
    int invert_tag(unsigned i) { return set_tag(i, get_tag(i) == 0 ? 1 : 0); }
    int get_tag(unsigned i) override { return tag(static_cast<int>(i)) ? 1 : 0; }
    int get_num_tags() override {
        int n = 0;
        each([&n](Entry& entry) { n += entry.tag ? 1 : 0; });
        return n;
    }
    int tagAll(bool on) {
        return each([on](Entry& entry) { entry.tag = on; });
    }
    int set_all_tags(int v) { return tagAll(v != 0); }
    int invert_all_tags() {
        return each([](Entry& entry) { entry.tag = !entry.tag; });
    }
    int tagMatches(int keep) {
        int n = 0;
        each([&](Entry& entry) {
            const bool matches = source().match_record(static_cast<int>(entry.row)) != 0;
            n += matches ? 1 : 0;
            entry.tag = matches || (keep != 0 && entry.tag);
        });
        return n;
    }
    int tag_matching_records(int) { return tagMatches(0); }
    int tagDuplicatesOrdered(int field) {
        int last = 0;
        int n = 0;
        for (int i = 1; i < count_; ++i) {
            if (compareIgnoringCase(text(last, field).c_str(), text(i, field).c_str()) == 0) {
                set_tag(static_cast<unsigned>(i), 1);
                ++n;
            } else {
                last = i;
            }
        }
        return n;
    }
    int tagDuplicates(int field) {
        const auto ordered = std::make_shared<ViewModel>(*db_);
        ordered->baseView(shared_from_this());
        ordered->displayAllRecords();
        set_sortfield(field);
        ordered->sort(1, 0);
        const int n = ordered->tagDuplicatesOrdered(field);
        ordered->tagBaseFromTags();
        return n;
    }
    int tag_all_different(int field) {
        tagDuplicates(field);
        invert_all_tags();
        return get_num_tags();
    }
    void tagBaseFromTags() {
        each([this](Entry& entry) { source().set_tag(entry.row, entry.tag ? 1 : 0); });
    }
    void setupViewTagsFromOledbTagField() {
        displayAllRecords();
        for (unsigned i = 0; db_->hasTagField() && i < source().get_num_records(); ++i) {
            const auto row = source().record(i);
            set_tag(i, row ? std::atoi(db_->values(*row)[0].c_str()) : 0);
        }
    }
    void displayAllRecordsWithBaseTagStatus() {
        displayAllRecords();
        for (unsigned i = 0; db_->hasTagField() && i < source().get_num_records(); ++i) {
            set_tag(i, source().get_tag(i));
        }
    }

    // -- display --

    int displayRecordsAt(int row, int n, int where) {
        followToTheEnd();
        if (n < 0 || n > INT_MAX - count_) {
            return 0;
        }
        const int first = makeGap(where, n);
        for (int i = 0; i < n; ++i) {
            at(first + i).row = static_cast<std::uint32_t>(row) + static_cast<std::uint32_t>(i);
        }
        return n;
    }
    bool displayMatchAt(const char* field, const char* value, int where) {
        followToTheEnd();
        const int row = source().findFirst(field, value, 0);
        if (row < 0) {
            return false;
        }
        displayRecordsAt(row, 1, where);
        return true;
    }
    int displayRecordsAt(const std::vector<Cookie>& cookies, int where) {
        int shown = 0;
        for (const Cookie& cookie : cookies) {
            const int pos = where > INT_MAX - shown ? INT_MAX : where + shown;
            shown += displayMatchAt("Cookie", cookie.asString(false).c_str(), pos) ? 1 : 0;
        }
        return shown;
    }
    void displayTaggedRecordsAt(int where) {
        followToTheEnd();
        int next = makeGap(where, source().get_num_tags());
        for (unsigned i = 0; i < source().get_num_records(); ++i) {
            if (source().get_tag(i) != 0) {
                at(next++).row = i;
            }
        }
    }
    void displayAllRecords() {
        remove(0, count_);
        followToTheEnd();
        displayRecordsAt(0, static_cast<int>(source().get_num_records()), 0);
    }
    int displayAllFromAt(ViewModel* other, int where) {
        if (base_ || !other || other->base_ || other->db_ != db_) {
            return 0;
        }
        int added = 0;
        for (int i = 0; i < other->count_; ++i) {
            const auto row = other->record(static_cast<unsigned>(i));
            if (row && find(row) < 0) {
                const int pos = where > INT_MAX - added ? INT_MAX : where + added;
                added += displayRecordsAt(other->baseIndex(i), 1, pos);
            }
        }
        return added;
    }

    // -- removal, insertion, deletion --

    void remove(int from, int n) {
        if (from < 0 || from >= count_ || n < 0) {
            return;
        }
        n = std::min(n, count_ - from);
        for (int i = from; isPosition(i + n); ++i) {
            at(i) = at(i + n);
        }
        sizeIndexFor(count_ - n);
        count_ -= n;
        for (Walk* const walk : walks_) {
            walk->i -= std::clamp(walk->i - from, 0, n);
        }
        std::string text;
        for (int k = 0; k < n; ++k) {
            text += std::to_string(from + k) + " ";
        }
        notifier.issue("recordsDeleted", text);
    }
    void removeRecordsFromBaseView(int from, int n) {
        for (int k = room(from, n); k >= 1; k = room(from, n)) {
            if (!base_) {
                remove(from, k);
                return;
            }
            if (!isPosition(from)) {
                return;
            }
            const int r = runLength(from, k);
            base_->removeRecordsFromBaseView(sourceRow(from), r);
            n = k - r;
        }
    }
    int removeTagged() { return removeSome(true); }
    int removeNonTagged() { return removeSome(false); }
    int delete_tagged_records() { return removeSome(true) * 0; }
    int set_show_tags_only(int) { return removeSome(false); }
    int insertBlankRecords(int where, int n) {
        followToTheEnd();
        if (n < 0 || n > INT_MAX - count_) {
            return 0;
        }
        const int p = std::clamp(where, 0, count_);
        if (p != count_ && !isPosition(p)) {
            return 0; // counted, but without storage
        }
        unsigned first = static_cast<unsigned>(sourceRow(p));
        if (p == count_) {
            first = source().get_num_records();
            source().add_records(n);
        } else {
            source().insert_records(first, static_cast<unsigned>(n));
        }
        makeGap(p, n);
        for (int i = p; i < count_; ++i) {
            const auto step = static_cast<unsigned>(i - p);
            at(i).row = i < p + n ? first + step : at(i).row + static_cast<unsigned>(n);
        }
        return n;
    }
    int insert_records(unsigned where, unsigned n) override {
        return insertBlankRecords(static_cast<int>(where), static_cast<int>(n));
    }
    int add_records(int n) override {
        const int first = count_;
        insertBlankRecords(first, n);
        return first;
    }
    int deleteRecords(int from, int n) {
        int handled = 0;
        for (int k = room(from, n); k >= 1 && isPosition(from); k = room(from, n)) {
            const int r = runLength(from, k);
            source().delete_records(at(from).row, static_cast<unsigned>(r));
            handled += r;
            n = k - r;
        }
        return handled;
    }
    int delete_records(unsigned from, unsigned n) override {
        return deleteRecords(static_cast<int>(from), static_cast<int>(n));
    }
    int deleteTagged() {
        return byRuns(true, [this](int start, int n) { deleteRecords(start, n); });
    }

    // -- order, copies, values --

    /// Where a record is missing the rules leave the order open, and nothing is done here.
    void sort(int direction, int force) {
        const auto before = db_->comparison(direction, force);
        if (!allResolve()) {
            return;
        }
        const auto values = [this](const Entry& e) { return db_->values(*source().record(e.row)); };
        std::stable_sort(entries_.begin(), entries_.begin() + count_,
                         [&](auto& a, auto& b) { return before(values(a), values(b)) < 0; });
    }
    void set_sortfield(int field) { db_->order.keys = {field}; }
    void set_sortfields(const int* keys) { db_->order.keys = {keys[0], keys[1]}; }
    void set_sort_offset(int offset) { db_->order.offset = offset; }
    std::shared_ptr<ViewModel> copy() {
        const auto view = std::make_shared<ViewModel>(*db_);
        if (base_) {
            view->baseView(base_);
            view->displayAllRecords();
        } else {
            view->displayAllFromAt(this, 0);
        }
        for (int i = 0; isPosition(i); ++i) {
            view->set_tag(static_cast<unsigned>(i), tag(i) ? 1 : 0);
        }
        return view;
    }
    std::shared_ptr<ViewModel> newTagSubview() {
        const auto view = std::make_shared<ViewModel>(*db_);
        view->baseView(shared_from_this());
        view->displayTaggedRecordsAt(0);
        return view;
    }
    int set_field(unsigned r, unsigned col, const char* text) {
        const int i = static_cast<int>(r);
        if (!isPosition(i)) {
            return 0;
        }
        return base_ ? base_->set_field(at(i).row, col, text)
                     : db_->set_field(at(i).row, col, text);
    }
    [[nodiscard]] unsigned get_num_records() const override {
        return static_cast<unsigned>(count_);
    }
    int findFirst(const char* field, const char* value, int) override {
        return source().findFirst(field, value, 0);
    }
    [[nodiscard]] int match_record(int row) const override { return source().match_record(row); }

private:
    struct Entry {
        std::uint32_t row = 0;
        bool tag = false;
    };

    [[nodiscard]] SourceModel& source() const {
        return base_ ? static_cast<SourceModel&>(*base_) : *db_;
    }
    /// The count may exceed the storage.
    [[nodiscard]] bool isPosition(int i) const {
        return i >= 0 && i < std::min(count_, capacity());
    }
    template <class Code>
    int each(Code code) {
        std::for_each_n(entries_.begin(), std::min(count_, capacity()), code);
        return count_;
    }
    [[nodiscard]] Entry& at(int i) { return entries_.at(static_cast<std::size_t>(i)); }
    [[nodiscard]] const Entry& at(int i) const { return entries_.at(static_cast<std::size_t>(i)); }
    [[nodiscard]] std::string text(int i, int field) const {
        const auto row = record(static_cast<unsigned>(i));
        return row && field >= 0 && field < 2 ? db_->values(*row)[static_cast<std::size_t>(field)]
                                              : "";
    }
    /// Moves the entries from a position on up by n and returns the position, brought into range.
    int makeGap(int where, int n) {
        const int first = std::clamp(where, 0, count_);
        sizeIndexFor(count_ + n);
        for (int i = count_ - 1; i >= first; --i) {
            at(i + n) = at(i);
        }
        count_ += n;
        return first;
    }
    [[nodiscard]] int room(int from, int n) const {
        return from < 0 || from >= count_ ? 0 : std::min(n, count_ - from);
    }
    [[nodiscard]] int runLength(int from, int k) const {
        int r = 1;
        for (int j = from; j < k - 1 && isPosition(j + 1) && at(j).row + 1 == at(j + 1).row; ++j) {
            ++r;
        }
        return r;
    }
    template <class Handle>
    int byRuns(bool tagged, Handle handle) {
        int start = -1;
        int n = 0;
        int i = 0;
        for (; i < count_; ++i) {
            if (tag(i) == tagged) {
                start = start < 0 ? i : start;
            } else if (start >= 0) {
                handle(start, i - start);
                n += i - start;
                i = std::exchange(start, -1);
            }
        }
        if (start >= 0) {
            handle(start, i - start);
            n += i - start;
        }
        return n;
    }
    int removeSome(bool tagged) {
        return byRuns(tagged, [this](int start, int n) { removeRecordsFromBaseView(start, n); });
    }
    NotifierModel::Registration hear(SourceModel& source) {
        return source.notifier.listen([this](const std::string& type, const std::string& text) {
            if (type == "recordsDeleted") {
                recordsDeleted(text);
            }
        });
    }
    /// A message of deleted rows, as far as the view has followed it.
    struct Walk {
        std::deque<int> rows;
        int k = 0;
        int i = 0;
        std::string collected;
        std::exception_ptr thrown;
    };
    void recordsDeleted(const std::string& text) {
        Walk own;
        std::istringstream tokens{text};
        for (int number = 0; tokens >> number;) {
            own.rows.push_back(number);
        }
        walks_.push_back(&own);
        finishWalks();
        walks_.pop_back();
        if (own.thrown) {
            std::rethrow_exception(own.thrown);
        }
    }
    /// Before entries come: hears of all that was deleted below, and follows it.
    void followToTheEnd() {
        db_->notifier.tellTheRest("recordsDeleted");
        if (const auto below = base_) {
            below->followToTheEnd();
            below->notifier.tellTheRest("recordsDeleted");
        }
        finishWalks();
    }
    /// The earlier ones first.
    void finishWalks() {
        for (std::size_t i = 0, n = walks_.size(); i < n; ++i) {
            finish(*walks_[i]);
        }
    }
    void finish(Walk& walk) {
        const auto caught = [&walk](auto step) {
            try {
                step();
            } catch (...) {
                walk.thrown = walk.thrown ? walk.thrown : std::current_exception();
            }
        };
        while (!walk.rows.empty()) {
            const int i = walk.i;
            const int d = walk.rows.front() - walk.k;
            if (!isPosition(i)) {
                walk.rows.pop_front();
                ++walk.k;
                walk.i = 0;
            } else if (sourceRow(i) == d) {
                walk.collected += std::to_string(i + walk.k - 1) + " ";
                caught([&] { remove(i, 1); });
            } else {
                at(i).row -= sourceRow(i) > d ? 1 : 0;
                ++walk.i;
            }
        }
        if (const std::string all = std::exchange(walk.collected, {}); !all.empty()) {
            caught([&] { notifier.issue("recordsDeleted", all); });
            caught([&] { notifier.issue("recordsChanged", ""); });
        }
    }

    GroundModel* db_;
    std::shared_ptr<ViewModel> base_;
    std::vector<Entry> entries_;
    int count_ = 0;
    std::vector<Walk*> walks_;
    NotifierModel::Registration fromTable_;
    NotifierModel::Registration fromBase_;
};
