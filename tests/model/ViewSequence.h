#pragma once

// Long random sequences of operations on a table, views beside and upon each other up to three
// deep, and listeners, against the plain model: results, notices in the order of delivery over all
// notifiers, what listeners see of every view in the middle of a notice, and after every operation
// the count, capacity, rows, tags and records of each view. In some steps a listener itself runs an
// operation during a notice. At the end the tag bytes of the unused storage are compared, which
// appending reveals. In others it throws, and everybody is told all the same. Where nobody listens,
// views are looked at now and then only, so that they have several deletions to follow at once. The
// choices come from a seed or from a fuzzer's bytes.

#include "model/ViewModel.h"
#include "ole/oledb/ODBView.h"
#include "support/NoticeRecorder.h"
#include "support/Random.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

inline constexpr int extremes[] = {-1, -2, INT_MIN, INT_MAX, INT_MAX - 1, 1 << 30};
inline int cookieFirst[] = {1, 0, -1}; // sort keys, which tables do not copy

/// What the operations of one step work with; each takes what it needs.
struct Arguments {
    int i = 0; ///< a position
    int n = 0;
    int more = 0; ///< number of new entries
    int row = 0;
    int col = 0;
    std::string text;
    std::vector<Cookie> cookies;
    [[nodiscard]] unsigned at() const { return static_cast<unsigned>(i); }
    [[nodiscard]] unsigned un() const { return static_cast<unsigned>(n); }
};

/// One operation, in one piece of code for both sides.
template <class Real, class Plain>
struct Operation {
    const char* name;
    long (*real)(Real&, const Arguments&);
    long (*plain)(Plain&, const Arguments&);
    enum { Anywhere, Between, NeedsRecords } use; ///< also in a notice; or only between operations

    template <class Code>
    Operation(const char* itsName, Code, decltype(use) itsUse = Anywhere)
        : name{itsName}, real{[](Real& r, const Arguments& a) {
              return static_cast<long>(Code{}(r, a));
          }},
          plain{[](Plain& p, const Arguments& a) { return static_cast<long>(Code{}(p, a)); }},
          use{itsUse} {}
};
using OnView = Operation<ODBViewRep, ViewModel>;
using OnTable = Operation<oledb, GroundModel>;

// clang-format off
inline const OnView viewOperations[] = {
    {"clear", [](auto& v, auto&) { return v.clear(), 0; }},
    {"buildIndex", [](auto& v, auto&) { return v.buildIndex(), 0; }},
    {"sizeIndexFor", [](auto& v, auto& a) { return v.sizeIndexFor(a.row % 150), 0; }},
    {"append", [](auto& v, auto& a) { return v.append(a.row); }},
    {"baseIndex", [](auto& v, auto& a) { return v.baseIndex(a.i); }},
    {"findViewIndexForBaseRow", [](auto& v, auto& a) { return v.findViewIndexForBaseRow(static_cast<unsigned long>(a.row)); }},

    {"set_tag", [](auto& v, auto& a) { return v.set_tag(a.at(), a.n); }},
    {"set_tag", [](auto& v, auto& a) { return v.set_tag(a.at(), 1); }},
    {"invert_tag", [](auto& v, auto& a) { return v.invert_tag(a.at()); }},
    {"get_tag", [](auto& v, auto& a) { return v.get_tag(a.at()); }},
    {"get_num_tags", [](auto& v, auto&) { return v.get_num_tags(); }},
    {"tagAll", [](auto& v, auto& a) { return v.tagAll(a.n % 2 == 0); }},
    {"set_all_tags", [](auto& v, auto& a) { return v.set_all_tags(a.n); }},
    {"invert_all_tags", [](auto& v, auto&) { return v.invert_all_tags(); }},
    {"tagBaseFromTags", [](auto& v, auto&) { return v.tagBaseFromTags(), 0; }},
    {"match_record", [](auto& v, auto& a) { return v.match_record(a.i); }},
    {"tagMatches", [](auto& v, auto& a) { return v.tagMatches(a.n); }},
    {"tag_matching_records", [](auto& v, auto& a) { return v.tag_matching_records(a.n); }},
    {"tagDuplicatesOrdered", [](auto& v, auto& a) { return v.tagDuplicatesOrdered(a.col); }},
    {"tagDuplicates", [](auto& v, auto& a) { return v.tagDuplicates(a.col); }, OnView::NeedsRecords},
    {"tag_all_different", [](auto& v, auto& a) { return v.tag_all_different(a.col); }, OnView::NeedsRecords},

    {"displayRecordsAt", [](auto& v, auto& a) { return v.displayRecordsAt(a.row, a.more, a.i); }},
    {"displayMatchAt", [](auto& v, auto& a) { return v.displayMatchAt("Tag", a.text.c_str(), a.i); }},
    {"displayTaggedRecordsAt", [](auto& v, auto& a) { return v.displayTaggedRecordsAt(a.i), 0; }},
    {"display cookies", [](auto& v, auto& a) { return v.displayRecordsAt(a.cookies, a.i); }, OnView::Between},
    {"displayAllRecords", [](auto& v, auto&) { return v.displayAllRecords(), 0; }},
    {"displayAllRecordsWithBaseTagStatus", [](auto& v, auto&) { return v.displayAllRecordsWithBaseTagStatus(), 0; }},
    {"setupViewTagsFromOledbTagField", [](auto& v, auto&) { return v.setupViewTagsFromOledbTagField(), 0; }},
    {"findFirst", [](auto& v, auto& a) { return v.findFirst("Tag", a.text.c_str(), a.n); }},

    {"remove", [](auto& v, auto& a) { return v.remove(a.i, a.n), 0; }},
    {"removeRecordsFromBaseView", [](auto& v, auto& a) { return v.removeRecordsFromBaseView(a.i, a.n), 0; }},
    {"removeTagged", [](auto& v, auto&) { return v.removeTagged(); }},
    {"removeNonTagged", [](auto& v, auto&) { return v.removeNonTagged(); }},
    {"delete_tagged_records", [](auto& v, auto&) { return v.delete_tagged_records(); }},
    {"set_show_tags_only", [](auto& v, auto& a) { return v.set_show_tags_only(a.n); }},
    {"insertBlankRecords", [](auto& v, auto& a) { return v.insertBlankRecords(a.i, a.more); }},
    {"insert_records", [](auto& v, auto& a) { return v.insert_records(a.at(), static_cast<unsigned>(a.more)); }},
    {"add_records", [](auto& v, auto& a) { return v.add_records(a.more); }},
    {"deleteRecords", [](auto& v, auto& a) { return v.deleteRecords(a.i, a.n); }},
    {"delete_records", [](auto& v, auto& a) { return v.delete_records(a.at(), a.un()); }},
    {"deleteTagged", [](auto& v, auto&) { return v.deleteTagged(); }},
    {"set_field", [](auto& v, auto& a) { return v.set_field(a.at(), 0, a.text.c_str()); }},

    {"set_sort_offset", [](auto& v, auto& a) { return v.set_sort_offset(a.n % 3), 0; }},
    {"set_sortfield", [](auto& v, auto& a) { return v.set_sortfield(a.col), 0; }},
    {"set_sortfields", [](auto& v, auto&) { return v.set_sortfields(cookieFirst), 0; }},
    {"sort", [](auto& v, auto& a) { return v.sort(a.row % 2 == 0 ? a.row : -1, 0), 0; }, OnView::NeedsRecords},
    {"sort", [](auto& v, auto& a) { return v.sort(a.row % 2 == 0 ? a.row : -1, a.n), 0; }, OnView::NeedsRecords},
};
inline const OnTable tableOperations[] = {
    {"table delete_records", [](auto& t, auto& a) { return t.delete_records(a.at(), a.un()); }},
    {"table delete_records", [](auto& t, auto& a) { return t.delete_records(a.at(), 1); }},
    {"table delete_records", [](auto& t, auto& a) { return t.delete_records(a.at(), 2); }},
    {"table delete_tagged_records", [](auto& t, auto&) { return t.delete_tagged_records(); }},
    {"table insert_records", [](auto& t, auto& a) { return t.insert_records(a.at(), a.un() % 8); }},
    {"table add_records", [](auto& t, auto& a) { return t.add_records(a.n % 8); }},
    {"table set_tag", [](auto& t, auto& a) { return t.set_tag(a.at(), a.n & 1); }},
    {"table set_tag", [](auto& t, auto& a) { return t.set_tag(a.at(), 1); }},
    {"table sort", [](auto& t, auto& a) { return t.sort(a.n % 5 - 2, 1), 0; }},
    {"table set_show_tags_only", [](auto& t, auto& a) { return t.set_show_tags_only(a.n == 1 ? 1 : 0); }},
};
// clang-format on

/// Who listens, which changes neither results nor choices; only those who react do.
enum class Hearing { Nobody, Quiet, Reacting };

class ViewSequence {
public:
    /// Works on a table that `save` left, or on a new one.
    explicit ViewSequence(Random& random, std::unique_ptr<oledb> saved = {},
                          std::optional<Hearing> hearing = {})
        : random_{random}, hearing_{anyHearing(random, hearing)},
          table_{saved ? std::move(saved) : makeTable({random.oneIn(4) ? "id" : "Tag", "Cookie"})},
          ground_{table_->get_fieldname(0)} {
        table_->set_query(&query_);
        if (random_.oneIn(2)) {
            listenTo(*table_, ground_, "early", table_->life());
        }
        takeRows();
        fillTable();
        for (int i = 0; i < 3; ++i) {
            add(ODBView{table_.get()}, std::make_shared<ViewModel>(ground_));
        }
        listenTo(*table_, ground_, "late", table_->life());
        compare();
    }

    void step() {
        planReaction();
        chosen_ = anyView();
        const unsigned kind = random_.below(20);
        if (kind == 0) {
            changeViews();
        } else if (kind == 1) {
            showFromAnother();
        } else if (kind < 5) {
            onTable(random_.pick(tableOperations));
        } else {
            onView(random_.pick(viewOperations));
        }
        reaction_.at = 0;
        limitGrowth();
        if (random_.oneIn(4) || hearing_ != Hearing::Nobody) {
            compare();
        }
    }
    /// Fills the unused storage with new entries, which take over its tag bytes.
    void finish() {
        for (Both& view : views_) {
            for (int unused = view.plain->capacity() - view.plain->count(); unused > 0; --unused) {
                view.real->append(0);
                view.plain->append(0);
            }
        }
        compare();
    }
    /// Saves the table; what is loaded from the file agrees row for row.
    void save(const LightweightString<wchar_t>& path) {
        table_->set_show_tags_only(0);
        ground_.set_show_tags_only(0);
        table_->set_filename(path);
        ASSERT_EQ(table_->save_text(), static_cast<int>(ground_.get_num_records()));
        Rows rows;
        for (unsigned i = 0; i < ground_.get_num_records(); ++i) {
            if (ground_.hasTagField()) { // saving writes the tags there
                ground_.set_field(i, 0, std::to_string(ground_.get_tag(i)).c_str());
            }
            rows.push_back(ground_.values(i));
        }
        ASSERT_EQ(::rowsOf(oledb{path, INT_MAX, true}), rows);
    }
    [[nodiscard]] const std::string& lastStep() const { return step_; }

private:
    struct Both {
        ODBView real;
        std::shared_ptr<ViewModel> plain;
    };
    struct Thrown {};
    /// What a listener does at the notice of this number within a step; 0 for nothing.
    struct Reaction {
        int at = 0;
        std::size_t view = 0;
        const OnView* operation = nullptr;
        Arguments arguments;
        [[nodiscard]] bool throws() const { return arguments.n == 5; }
    };
    struct Heard {
        int notices = 0;
        std::vector<int> seen;
    };
    struct Listening {
        std::string name;
        std::weak_ptr<const void> source; ///< as long as that lives
        NotifierModel::Registration plain;
    };

    static Hearing anyHearing(Random& random, std::optional<Hearing> given) {
        const bool nobody = random.oneIn(4);
        return given ? *given : nobody ? Hearing::Nobody : Hearing::Reacting;
    }
    Both& view() { return views_[chosen_]; }
    unsigned anyView() { return random_.below(static_cast<unsigned>(views_.size())); }
    int anyPosition(unsigned count) {
        return random_.oneIn(15) ? random_.pick(extremes)
                                 : static_cast<int>(random_.below(count + 2));
    }
    Arguments anyArguments(unsigned count) {
        Arguments a;
        a.i = anyPosition(count);
        a.n = random_.oneIn(15) ? random_.pick(extremes) : static_cast<int>(random_.below(6));
        a.more = static_cast<int>(random_.below(random_.oneIn(8) ? 30 : 5)) - 1;
        a.row = anyPosition(ground_.get_num_records());
        a.col = random_.oneIn(10) ? 7 : static_cast<int>(random_.below(2));
        a.text = random_.text("01aA2", 2);
        for (unsigned n = random_.below(4); n > 0; --n) {
            a.cookies.push_back(cookieNo(random_.below(12)));
        }
        return a;
    }
    void note(const char* name, const Arguments& a) {
        step_ = "view " + std::to_string(chosen_) + " " + name;
        for (const int argument : {a.i, a.n, a.more, a.row, a.col}) {
            step_ += " " + std::to_string(argument);
        }
    }

    template <class Operate>
    static long resultOf(Operate operate) {
        try {
            return operate();
        } catch (const Thrown&) {
            return LONG_MIN;
        }
    }
    void onView(const OnView& operation) {
        Arguments a = anyArguments(view().plain->get_num_records());
        if (random_.oneIn(20) && view().plain->count() > 0) {
            a.more = INT_MAX; // no view can hold that
        }
        note(operation.name, a);
        if (operation.use == OnView::Between && !ground_.rows.rowOf(cookieText(0))) {
            return; // the table's cookies may be out of date
        }
        const bool open = operation.use == OnView::NeedsRecords && !view().plain->allResolve();
        const auto rows = open ? rowsOf(*view().real) : std::vector<int>{};
        const long result = resultOf([&] { return operation.real(*view().real, a); });
        const long expected = resultOf([&] { return operation.plain(*view().plain, a); });
        if (!open) {
            ASSERT_EQ(result, expected);
            return;
        }
        // Order and groups are open where a record is missing, but nothing may be lost.
        const auto after = rowsOf(*view().real);
        ASSERT_TRUE(std::is_permutation(rows.begin(), rows.end(), after.begin(), after.end()));
        view().plain->adopt(*view().real);
    }
    static std::vector<int> rowsOf(const ODBViewRep& view) {
        std::vector<int> rows;
        for (int i = 0; i < view.count(); ++i) {
            rows.push_back(view.sourceRow(i));
        }
        return rows;
    }
    void onTable(const OnTable& operation) {
        const Arguments a = anyArguments(ground_.get_num_records());
        note(operation.name, a);
        ground_.query = a.text;
        query_.set_field(0, a.text.c_str());
        ASSERT_EQ(resultOf([&] { return operation.real(*table_, a); }),
                  resultOf([&] { return operation.plain(ground_, a); }));
    }
    void showFromAnother() {
        const Both& other = views_[anyView()];
        const Arguments a = anyArguments(view().plain->get_num_records());
        note("displayAllFromAt", a);
        ASSERT_EQ(view().real->find(table_->get_record(a.at())),
                  view().plain->find(ground_.record(a.at())));
        // Entries without storage get some meanwhile, and whether they were shown is open.
        if (view().plain->count() <= view().plain->capacity()) {
            ASSERT_EQ(view().real->displayAllFromAt(other.real.rep(), a.i),
                      view().plain->displayAllFromAt(other.plain.get(), a.i));
        }
    }

    void changeViews() {
        note("new view or base", {});
        switch (random_.below(4)) {
        case 0:
            add(ODBView{view().real->newTagSubview()}, view().plain->newTagSubview());
            break;
        case 1:
            add(view().real.copy(), view().plain->copy());
            break;
        case 2:
            add(ODBView{table_.get()}, std::make_shared<ViewModel>(ground_));
            break;
        default:
            setBase();
        }
        if (views_.size() > 5) { // a base lives on under the views on it
            views_.erase(views_.begin() + anyView());
        }
        std::erase_if(listeners_, [this](const Listening& listening) {
            if (listening.source.expired()) {
                notices_.leave(listening.name);
            }
            return listening.source.expired();
        });
    }
    void add(ODBView real, const std::shared_ptr<ViewModel>& plain) {
        if (depthOf(plain.get()) > 3) {
            return;
        }
        views_.push_back({std::move(real), plain});
        if (!random_.oneIn(3) || hearing_ == Hearing::Quiet) {
            listenTo(*views_.back().real, *plain, "v" + std::to_string(++names_), plain);
        }
        if (random_.oneIn(2)) {
            const auto showAll = [](auto& view) { return view.displayAllRecords(), 0L; };
            ASSERT_EQ(resultOf([&] { return showAll(*views_.back().real); }),
                      resultOf([&] { return showAll(*plain); }));
        }
    }
    void setBase() {
        const unsigned other = random_.below(static_cast<unsigned>(views_.size()) + 1);
        const Both base = other == views_.size() ? Both{} : views_[other];
        if (depthOf(base.plain.get()) + heightOf(view().plain.get()) <= 3) {
            view().real->baseView(base.real.rep());
            view().plain->baseView(base.plain);
        }
    }
    static int depthOf(const ViewModel* view) { return view ? 1 + depthOf(view->baseView()) : 0; }
    [[nodiscard]] int heightOf(const ViewModel* view) const {
        int height = 1;
        for (const Both& both : views_) {
            int above = 1;
            for (const ViewModel* v = both.plain.get(); v; v = v->baseView(), ++above) {
                height = v == view ? std::max(height, above) : height;
            }
        }
        return height;
    }
    void takeRows() {
        ground_.add_records(static_cast<int>(table_->get_num_records()));
        for (unsigned row = 0; row < table_->get_num_records(); ++row) {
            ground_.set_field(row, 0, table_->get_field(row, 0));
            ground_.rows.rows[row].cookie = table_->get_field(row, 1);
        }
    }
    void fillTable() {
        const unsigned n = random_.below(45);
        table_->add_records(static_cast<int>(n));
        ground_.add_records(static_cast<int>(n));
        for (unsigned row = 0; row < n; ++row) {
            const Arguments a = anyArguments(n);
            table_->set_field(row, 0, a.text.c_str());
            ground_.set_field(row, 0, a.text.c_str());
            for (const Cookie& cookie : a.cookies) {
                table_->set_field(row, cookie);
                ground_.rows.setCookie(row, cookie.asString(false).c_str());
            }
        }
    }
    void limitGrowth() {
        for (Both& both : views_) {
            if (both.plain->count() > 90) {
                both.real->remove(7, 1000);
                both.plain->remove(7, 1000);
            }
        }
        if (ground_.rows.rows.size() > 60) {
            table_->set_show_tags_only(0);
            ground_.set_show_tags_only(0);
            table_->delete_records(12, 1000);
            ground_.delete_records(12, 1000);
        }
    }

    // -- listeners --

    void listenTo(Notifier& real, SourceModel& plain, const std::string& name,
                  std::weak_ptr<const void> source) {
        if (hearing_ == Hearing::Nobody) {
            return;
        }
        notices_.watch(real, name, [this] {
            hear(realHeard_, [](Both& both) -> ODBViewRep& { return *both.real; });
            react(realHeard_, [this](const Arguments& a) {
                reaction_.operation->real(*views_[reaction_.view].real, a);
            });
        });
        auto heard = plain.notifier.listen([=, this](const auto& type, const auto& text) {
            plainNotices_ += plainNotices_.empty() ? "" : " ";
            plainNotices_ += name + " " + type + " {" + text + "}";
            hear(plainHeard_, [](Both& both) -> ViewModel& { return *both.plain; });
            react(plainHeard_, [this](const Arguments& a) {
                reaction_.operation->plain(*views_[reaction_.view].plain, a);
            });
        });
        listeners_.push_back({name, std::move(source), std::move(heard)});
    }
    template <class Side>
    void hear(Heard& heard, Side side) {
        ++heard.notices;
        for (Both& both : views_) {
            heard.seen.push_back(side(both).count());
            for (int i = 0; i < side(both).count(); ++i) {
                heard.seen.push_back(side(both).sourceRow(i));
            }
        }
    }
    template <class Operate>
    void react(const Heard& heard, Operate operate) {
        if (heard.notices != reaction_.at) {
            return;
        }
        if (reaction_.throws()) {
            throw Thrown{};
        }
        operate(reaction_.arguments);
    }
    void planReaction() {
        const OnView& operation = random_.pick(viewOperations);
        if (random_.oneIn(6) && operation.use == OnView::Anywhere) {
            reaction_ = {1 + static_cast<int>(random_.below(4)), anyView(), &operation,
                         anyArguments(12)};
        }
        if (hearing_ != Hearing::Reacting) {
            reaction_.at = 0;
        }
    }

    // -- comparison --

    void compare() {
        ASSERT_EQ(notices_.taken(), plainNotices_);
        plainNotices_.clear();
        ASSERT_EQ(realHeard_.seen, plainHeard_.seen) << "what the listeners saw";
        realHeard_ = {};
        plainHeard_ = {};
        for (Both& both : views_) {
            ODBViewRep* real = both.real.rep();
            for (ViewModel* plain = both.plain.get(); plain; plain = plain->baseView()) {
                ASSERT_NO_FATAL_FAILURE(compareView(*real, *plain));
                real = real->baseView();
                ASSERT_EQ(real != nullptr, plain->baseView() != nullptr);
            }
        }
        ASSERT_EQ(table_->get_num_records(), ground_.get_num_records());
        for (unsigned i = 0; i < ground_.get_num_records(); ++i) {
            ASSERT_STREQ(table_->get_field(i, 0), ground_.values(i)[0].c_str());
            ASSERT_EQ(table_->get_tag(i), ground_.get_tag(i)) << "table row " << i;
        }
    }
    void compareView(ODBViewRep& real, ViewModel& plain) {
        ASSERT_EQ(real.count(), plain.count());
        ASSERT_EQ(real.capacity(), plain.capacity());
        for (int i = 0; i < plain.count(); ++i) {
            ASSERT_EQ(real.sourceRow(i), plain.sourceRow(i)) << "position " << i;
            ASSERT_EQ(real.tag(i), plain.tag(i)) << "position " << i;
            const auto row = plain.record(static_cast<unsigned>(i));
            ASSERT_EQ(real[i], row ? table_->get_record(*row) : nullptr) << "position " << i;
        }
    }

    Random& random_;
    const Hearing hearing_;
    dbrecord query_{2};
    std::unique_ptr<oledb> table_;
    GroundModel ground_;
    NoticeRecorder notices_;
    std::string plainNotices_;
    std::vector<Listening> listeners_;
    Heard realHeard_;
    Heard plainHeard_;
    Reaction reaction_;
    std::vector<Both> views_;
    std::size_t chosen_ = 0;
    int names_ = 0;
    std::string step_;
};

/// At most so many operations, fewer where the choices come to an end.
inline void runViewSequence(Random& random, int most, std::optional<Hearing> hearing = {}) {
    ViewSequence sequence{random, {}, hearing};
    for (int i = 0; i < most && !random.usedUp() && !testing::Test::HasFailure(); ++i) {
        sequence.step();
    }
    if (!testing::Test::HasFailure()) {
        sequence.finish();
    }
    EXPECT_FALSE(testing::Test::HasFailure()) << "last step: " << sequence.lastStep();
}
