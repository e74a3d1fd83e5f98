// Field specifications of views: a text of field names, and the list of references parsed from it.

#include "misc/diagnostics.h"
#include "ole/fieldspec/SExpr.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/GrowString.h"

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace {

/// Cuts the next name from the front of a specification; empty at its end.
std::string_view nextName(std::string_view& rest) {
    constexpr std::string_view separators = "\t,";
    const std::size_t start = rest.find_first_not_of(separators);
    rest.remove_prefix(start == std::string_view::npos ? rest.size() : start);
    const std::string_view name = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(name.size());
    return name;
}

} // namespace

void ODBViewRep::identityFieldSpec(GrowString& out) const {
    ODBBase* const from = source();
    const unsigned n = from ? from->get_num_fields() : 0;
    for (unsigned i = 0; i < n; ++i) {
        if (i != 0) {
            out.append(',');
        }
        out.append(from->get_fieldname(i));
    }
}

int ODBViewRep::dbFieldIndex(const char* name) const {
    ODBBase* const from = source();
    const unsigned n = from && name ? from->get_num_fields() : 0;
    for (unsigned i = 0; i < n; ++i) {
        const char* const known = from->get_fieldname(i);
        if (known && std::strcmp(known, name) == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void ODBViewRep::fieldSpec(const char* spec) {
    const KeepAlive alive{*this};             // the console is the host's
    const LightweightString<char> text{spec}; // before the old text goes: it may be that one
    fieldSpecStr = text;
    if (text.isNull()) {
        return;
    }
    std::string_view rest = text.view();
    for (std::string_view name = nextName(rest); !name.empty(); name = nextName(rest)) {
        const std::string token{name};
        const int field = dbFieldIndex(token.c_str());
        if (field < 0) {
            console_printf("Warning: ODBView::fieldSpec, non-existant fieldname \"%s\".\n",
                           token.c_str());
            continue;
        }
        auto reference = std::make_unique<SExprRef>(field, nullptr);
        referToSource(*reference);
        auto node = std::make_unique<SExpr>(reference.get(), fields.get());
        static_cast<void>(reference.release()); // owned by the node now, as is the list behind it
        static_cast<void>(fields.release());
        fields = std::move(node);
    }
    fields.reset(SExpr::reverse(fields.release()));
}

const char* ODBViewRep::fieldSpecText() const noexcept {
    return fieldSpecStr.isNull() ? nullptr : fieldSpecStr.c_str();
}

void ODBViewRep::asString(GrowString& out) const {
    out.append("fieldSpec: ").append(fieldSpecStr).append('\n');
    if (fields) {
        out.append("fields: ");
        fields->asString(out);
        out.append('\n');
    }
}

void ODBViewRep::referToSource(SExprRef& reference) const {
    if (base) {
        reference.refer(base);
    } else {
        reference.refer(db, tableLife_);
    }
}

/// References to a base view that was left name the new source: they must not outlive what they
/// name. A table tells when it dies, and references to one stay as they were made.
void ODBViewRep::retargetReferences(const ODBBase* from) {
    for (const SExpr* node = fields.get(); node; node = node->next) {
        auto* const reference = dynamic_cast<SExprRef*>(node->elt);
        if (reference && reference->db == from) {
            referToSource(*reference);
        }
    }
}
