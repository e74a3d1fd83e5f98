#pragma once

// What views stand on, as plain vectors: listeners in their order, and the table. Operations have
// the names of the module, so that one piece of test code drives both.

#include "support/CompareModel.h"
#include "support/SearchModel.h"
#include "support/TableModel.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Calls its listeners in the order in which they came; one that comes during a round waits. Before
/// a message that is issued during a round of its type that round goes on to its end. All are
/// called, and the first exception is thrown on then.
class NotifierModel {
public:
    using Listener = std::function<void(const std::string& type, const std::string& text)>;
    using Registration = std::shared_ptr<const Listener>;

    [[nodiscard]] Registration listen(Listener listener) {
        auto registration = std::make_shared<const Listener>(std::move(listener));
        listeners_.push_back(registration);
        return registration;
    }
    void issue(const std::string& type, const std::string& text) {
        std::erase_if(listeners_, [](const auto& listener) { return listener.expired(); });
        Round own{type, text, {listeners_.begin(), listeners_.end()}, {}};
        rounds_.push_back(&own);
        tellTheRest(type);
        rounds_.pop_back();
        if (own.thrown) {
            std::rethrow_exception(own.thrown);
        }
    }
    void tellTheRest(const std::string& type) {
        for (std::size_t i = 0, n = rounds_.size(); i < n; ++i) {
            if (rounds_[i]->type == type) {
                finish(*rounds_[i]);
            }
        }
    }

private:
    struct Round {
        std::string type;
        std::string text;
        std::deque<std::weak_ptr<const Listener>> waiting;
        std::exception_ptr thrown;
    };
    static void finish(Round& round) {
        while (!round.waiting.empty()) {
            const auto registered = round.waiting.front().lock();
            round.waiting.pop_front();
            try {
                if (registered) {
                    (*registered)(round.type, round.text);
                }
            } catch (...) {
                round.thrown = round.thrown ? round.thrown : std::current_exception();
            }
        }
    }

    std::vector<std::weak_ptr<const Listener>> listeners_;
    std::vector<Round*> rounds_;
};

/// What a view stands on.
class SourceModel {
public:
    virtual ~SourceModel() = default;
    [[nodiscard]] virtual unsigned get_num_records() const = 0;
    /// The table's row behind a row, if there is one.
    [[nodiscard]] virtual std::optional<unsigned> record(unsigned row) const = 0;
    virtual int get_tag(unsigned row) = 0;
    virtual int set_tag(unsigned row, int tag) = 0;
    virtual int get_num_tags() = 0;
    virtual int insert_records(unsigned at, unsigned n) = 0;
    virtual int delete_records(unsigned from, unsigned n) = 0;
    virtual int add_records(int n) = 0;
    virtual int findFirst(const char* field, const char* value, int n) = 0;
    [[nodiscard]] virtual int match_record(int row) const = 0;
    virtual int baseIndex(int row) = 0;

    NotifierModel notifier;
};

/// A table of the columns "Tag" or "id", and "Cookie".
class GroundModel : public SourceModel {
public:
    explicit GroundModel(std::string firstColumn) : firstColumn_{std::move(firstColumn)} {}

    [[nodiscard]] bool hasTagField() const { return firstColumn_ == "Tag"; }
    /// The values of a row that the table shows.
    [[nodiscard]] Texts values(unsigned row) const {
        const auto* const found = const_cast<TableModel&>(rows).at(row);
        return {found->value, found->cookie};
    }
    [[nodiscard]] unsigned get_num_records() const override { return rows.count(); }
    [[nodiscard]] std::optional<unsigned> record(unsigned row) const override {
        return row < rows.count() ? std::optional{row} : std::nullopt;
    }
    int get_tag(unsigned row) override { return rows.at(row) ? rows.at(row)->tag : -1; }
    int set_tag(unsigned row, int tag) override {
        if (!rows.at(row)) {
            return 0;
        }
        rows.at(row)->tag = tag;
        return 1;
    }
    int get_num_tags() override {
        int n = 0;
        for (unsigned i = 0; i < rows.count(); ++i) {
            n += get_tag(i) != 0 ? 1 : 0;
        }
        return n;
    }
    int insert_records(unsigned at, unsigned n) override {
        return n == 0 ? 0 : rows.insertRows(at, n); // none: cookies stay known
    }
    int add_records(int n) override { return rows.addRows(n); }
    int delete_records(unsigned from, unsigned n) override {
        const int deleted = rows.deleteRows(from, n);
        const std::string sent = std::exchange(rows.notices, {}); // "recordsDeleted {3 4 }"
        if (!sent.empty()) {
            notifier.issue("recordsDeleted", sent.substr(16, sent.size() - 17));
        }
        return deleted;
    }
    int delete_tagged_records() {
        if (rows.tagsOnly) {
            return -1;
        }
        int deleted = 0;
        int start = -1;
        for (int i = 0; i <= static_cast<int>(rows.count()); ++i) {
            if (get_tag(static_cast<unsigned>(i)) == 1) {
                start = start < 0 ? i : start;
            } else if (start >= 0) {
                deleted += i - start;
                delete_records(static_cast<unsigned>(start), static_cast<unsigned>(i - start));
                i = std::exchange(start, -1);
            }
        }
        return deleted;
    }
    /// All rows are searched, shown or not. Callers see to it that cookies are not stale.
    int findFirst(const char* field, const char* value, int) override {
        const bool byCookie = std::string{"Cookie"} == field;
        const int row = byCookie ? *rows.rowOf(value) : -1;
        if (row >= 0 || (!byCookie && field != firstColumn_)) {
            return row;
        }
        for (unsigned i = 0; i < rows.rows.size(); ++i) {
            if ((byCookie ? rows.rows[i].cookie : rows.rows[i].value) == value) {
                return static_cast<int>(i);
            }
        }
        return -1;
    }
    [[nodiscard]] int match_record(int row) const override {
        const auto found = record(static_cast<unsigned>(row));
        return found ? SearchModel{}.found(values(*found)[0], query) : -1;
    }
    int baseIndex(int row) override { return row; }
    int set_show_tags_only(int on) {
        rows.show(on != 0);
        return on != 0 ? static_cast<int>(rows.count()) : 0;
    }
    int set_field(unsigned row, unsigned, const char* text) {
        if (!rows.at(row)) {
            return 0;
        }
        rows.at(row)->value = text;
        return 1;
    }
    void sort(int direction, int force) {
        const auto before = comparison(direction, force);
        std::stable_sort(rows.rows.begin(), rows.rows.end(), [&](const auto& a, const auto& b) {
            return before({a.value, a.cookie}, {b.value, b.cookie}) < 0;
        });
        if (rows.tagsOnly) {
            rows.snapshot();
        }
        rows.cookiesStale = rows.cookiesStale || !rows.cookies.empty();
    }
    /// Keys that are no columns end the list for good.
    std::function<int(const Texts&, const Texts&)> comparison(int direction, int force) {
        const auto outside = [](int key) { return key < 0 || key >= 2; };
        order.keys.erase(std::find_if(order.keys.begin(), order.keys.end(), outside),
                         order.keys.end());
        CompareModel model = order;
        model.force = force != 0;
        return [model, direction](const Texts& a, const Texts& b) {
            return direction >= 0 ? model.ascending(a, b) : model.descending(a, b);
        };
    }

    TableModel rows;
    std::string query;
    CompareModel order{{0}};

private:
    std::string firstColumn_;
};
