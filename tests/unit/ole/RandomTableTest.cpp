// Long random sequences of operations on a table and on plain vectors: rows, tags, shown rows,
// numbers, cookies, capacity and notices agree after every step. Half of the tables have no
// listener, for which deletions may take another way.

#include "ole/oledb/oledb.h"
#include "support/NoticeRecorder.h"
#include "support/Random.h"
#include "support/TableModel.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

class Sequence {
public:
    explicit Sequence(Random& random) : random_{random}, heard_{random.oneIn(2)} {
        table_->set_query(&query_);
        if (heard_) {
            notices_.watch(*table_);
        }
    }

    void step() {
        using Step = void (Sequence::*)();
        // clang-format off
        static constexpr Step steps[] = {
            &Sequence::addRows, &Sequence::addRows, &Sequence::insertRows, &Sequence::insertRows,
            &Sequence::deleteRows, &Sequence::deleteTagged, &Sequence::setTag, &Sequence::setTag,
            &Sequence::setTag, &Sequence::invertTags, &Sequence::setAllTags, &Sequence::show,
            &Sequence::show, &Sequence::setValue, &Sequence::setValue, &Sequence::setCookie,
            &Sequence::setCookie, &Sequence::writeCookieText, &Sequence::askCookies,
            &Sequence::askCookies, &Sequence::sort, &Sequence::tagMatches, &Sequence::copyRecord,
            &Sequence::appendTable, &Sequence::batch, &Sequence::find};
        // clang-format on
        (this->*random_.pick(steps))();
        compare();
    }

private:
    /// A row number, now and then one outside.
    unsigned anyRow() {
        static constexpr unsigned wild[] = {0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU};
        return random_.oneIn(12) ? random_.pick(wild) : random_.below(model_.count() + 2);
    }
    /// Small numbers; rarely one that needs more capacity.
    unsigned someRows() { return random_.oneIn(150) ? 480 : random_.below(4); }
    std::string anyCookie() { return random_.oneIn(5) ? "" : cookieText(random_.below(6)); }

    void addRows() {
        const int n = static_cast<int>(someRows()) - (random_.oneIn(5) ? 2 : 0);
        ASSERT_EQ(table_->add_records(n), model_.addRows(n));
    }
    void insertRows() {
        const unsigned at = anyRow();
        const unsigned n = 1 + someRows();
        ASSERT_EQ(table_->insert_records(at, n), model_.insertRows(at, n));
    }
    void deleteRows() {
        const unsigned from = anyRow();
        const unsigned n = random_.oneIn(8) ? 0xFFFFFFFFU : random_.below(5);
        table_->clear_changed();
        expectDeleted(model_.deleteRows(from, n), table_->delete_records(from, n));
    }
    void deleteTagged() {
        table_->clear_changed();
        expectDeleted(model_.deleteTagged(), table_->delete_tagged_records());
    }
    void expectDeleted(int expected, int rows) {
        ASSERT_EQ(rows, expected);
        ASSERT_EQ(table_->get_changed(), rows > 0 ? 1 : 0);
    }
    void setTag() {
        const unsigned row = anyRow();
        const int tag = random_.oneIn(3) ? 0 : 1;
        table_->set_tag(row, tag);
        if (auto* const found = model_.at(row)) {
            found->tag = tag;
        }
    }
    void invertTags() {
        if (random_.oneIn(4)) {
            table_->invert_all_tags();
            for (auto& row : model_.rows) {
                row.tag = 1 - row.tag;
            }
        }
        const unsigned row = anyRow();
        table_->invert_tag(row);
        if (auto* const found = model_.at(row)) {
            found->tag = 1 - found->tag;
        }
    }
    void setAllTags() {
        const int tag = random_.oneIn(2) ? 1 : 0;
        table_->set_all_tags(tag);
        for (unsigned i = 0; i < model_.count(); ++i) {
            model_.at(i)->tag = tag;
        }
    }
    void show() {
        const bool on = random_.oneIn(3);
        table_->set_show_tags_only(on ? 1 : 0);
        model_.show(on);
    }
    void setValue() {
        const unsigned row = anyRow();
        const std::string value = random_.text("abc", 3);
        ASSERT_EQ(table_->set_field(row, 0, value.c_str()), model_.at(row) ? 1 : 0);
        if (auto* const found = model_.at(row)) {
            found->value = value;
        }
    }
    void setCookie() {
        const unsigned row = anyRow();
        const unsigned number = random_.below(6);
        ASSERT_EQ(table_->set_field(row, cookieNo(number)),
                  model_.setCookie(row, cookieNo(number).asString(false).c_str()));
    }
    void writeCookieText() {
        const unsigned row = anyRow();
        const std::string text = anyCookie();
        ASSERT_EQ(table_->set_field(row, 1, text.c_str()), model_.at(row) ? 1 : 0);
        if (auto* const found = model_.at(row)) {
            model_.setCookieText(*found, text);
        }
    }
    void askCookies() {
        for (unsigned number = 0; number < 6; ++number) {
            const auto expected = model_.rowOf(cookieText(number));
            if (expected) {
                ASSERT_EQ(table_->getRowIndexByID(cookieNo(number)), *expected) << number;
            }
        }
    }
    void sort() {
        const bool up = random_.oneIn(2);
        table_->sort(up ? 1 : -1, 1);
        model_.sortByValue(up);
    }
    void tagMatches() {
        const std::string pattern = random_.text("abc", 2);
        query_.set_field(0, pattern.c_str());
        if (pattern.size() < 2) { // longer ones meet the naive scan
            const bool keep = random_.oneIn(2);
            ASSERT_EQ(table_->tag_matching_records(keep ? 1 : 0), model_.tagValue(pattern, keep));
        }
    }
    void copyRecord() {
        const auto to = static_cast<int>(anyRow());
        const auto from = static_cast<int>(anyRow());
        table_->copy_record(to, table_.get(), from);
        auto* const target = model_.at(static_cast<unsigned>(to));
        const auto* const source = model_.at(static_cast<unsigned>(from));
        if (target && source) {
            target->value = source->value;
            model_.setCookieText(*target, source->cookie);
        }
    }
    void appendTable() {
        const auto other = makeTable({"ID", "COOKIE"}, {{"b", anyCookie()}, {"c", ""}});
        const int first = model_.addRows(2);
        ASSERT_EQ(table_->add_oledb(other.get()), first < 0 ? -1 : 2);
        if (first >= 0) {
            const auto row = static_cast<unsigned>(first);
            model_.rows[row].value = "b";
            model_.rows[row + 1].value = "c";
            model_.setCookieText(model_.rows[row], other->get_field(0, 1));
        }
    }
    void batch() {
        switch (random_.below(3)) {
        case 0:
            table_->beginUpdate();
            model_.begin();
            break;
        case 1: {
            const unsigned number = random_.below(6);
            table_->addToUpdate(cookieNo(number));
            model_.pending.emplace_back(cookieText(number));
            break;
        }
        default:
            table_->endUpdate();
            model_.end();
        }
    }
    /// Searches all rows by their stored numbers, shown or not.
    void find() {
        const std::string value = random_.text("abc", 2);
        int expected = -1;
        for (unsigned i = 0; i < model_.rows.size() && expected < 0; ++i) {
            expected = model_.rows[i].value == value ? static_cast<int>(i) : -1;
        }
        ASSERT_EQ(table_->findFirst("id", value.c_str(), 0), expected);
    }

    void compare() {
        ASSERT_EQ(notices_.taken(), heard_ ? model_.notices : "");
        model_.notices.clear();
        ASSERT_EQ(table_->get_num_records(), model_.count());
        ASSERT_EQ(table_->get_capacity(), model_.capacity);
        int tags = 0;
        for (unsigned i = 0; i < model_.count(); ++i) {
            const auto& row = *model_.at(i);
            ASSERT_STREQ(table_->get_field(i, 0), row.value.c_str()) << i;
            ASSERT_STREQ(table_->get_field(i, "Cookie"), row.cookie.c_str()) << i;
            ASSERT_EQ(table_->get_tag(i), row.tag) << i;
            ASSERT_EQ(table_->get_raw_row(i), *model_.position(row.id));
            tags += row.tag;
        }
        ASSERT_EQ(table_->get_num_tags(), tags);
        for (unsigned raw = 0; raw < model_.rows.size() + 2; ++raw) {
            ASSERT_EQ(table_->get_new_row(raw), model_.newRow(raw));
        }
        ASSERT_EQ(table_->get_record(model_.count()), nullptr);
    }

    Random& random_;
    const bool heard_;
    TableModel model_;
    dbrecord query_{2};
    std::unique_ptr<oledb> table_ = makeTable({"id", "cookie"});
    NoticeRecorder notices_;
};

TEST(RandomTable, AgreesWithPlainVectors) {
    forSeeds(60, [](Random& random) {
        Sequence sequence{random};
        for (int i = 0; i < 300 && !testing::Test::HasFatalFailure(); ++i) {
            sequence.step();
        }
    });
}

} // namespace
