#pragma once

// The search language the slow way, position by position, straight from its rules.
//
// Two points have two readings: where the scan goes on after a find that is no whole word, and
// whether punctuation that was matched as such counts as a matched pair itself. The model answers
// for a chosen reading; tests compare where all readings agree.

#include <string>

struct SearchModel {
    bool caseSensitive = false;
    bool wholeWord = false;
    bool timecode = false;
    bool goOnBehindFind = false; ///< reading of the first point
    bool marksChain = false;     ///< reading of the second

    [[nodiscard]] int found(const std::string& text, const std::string& pattern) const {
        if (pattern.empty()) {
            return 1;
        }
        std::size_t start = 0;
        while (start < text.size()) {
            if (!same(text[start], pattern[0])) {
                ++start;
                continue;
            }
            if (start + 1 == text.size() && text.size() > 1) {
                return pattern.size() == 1 ? 1 : 0;
            }
            std::size_t t = start + 1;
            if (restMatches(text, t, pattern)) {
                if (!wholeWord || standsAlone(text, start, t)) {
                    return 1;
                }
                t = goOnBehindFind ? t : start + 1;
            }
            start = t;
        }
        return 0;
    }

private:
    /// Compares everything behind the first pair; `t` ends behind the find or where it failed.
    [[nodiscard]] bool restMatches(const std::string& text, std::size_t& t,
                                   const std::string& pattern) const {
        std::size_t p = 1;
        while (p < pattern.size()) {
            if (t >= text.size() || !same(text[t], pattern[p])) {
                return false;
            }
            ++t;
            ++p;
            while (timecode && t < text.size() && p < pattern.size() && isMark(text[t]) &&
                   isMark(pattern[p])) {
                ++t;
                ++p;
                if (!marksChain) {
                    break;
                }
            }
        }
        return true;
    }
    [[nodiscard]] bool same(char text, char pattern) const {
        return pattern == '?' || (caseSensitive ? text == pattern : low(text) == low(pattern));
    }
    static bool standsAlone(const std::string& text, std::size_t start, std::size_t end) {
        return (start == 0 || isBreak(text[start - 1])) &&
               (end == text.size() || isBreak(text[end]));
    }
    static char low(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
    static bool isWordChar(char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte > 127 || (low(c) >= 'a' && low(c) <= 'z') || (c >= '0' && c <= '9');
    }
    static bool isBreak(char c) { return !isWordChar(c) && c != '_'; }
    static bool isMark(char c) { return c > 32 && c < 127 && !isWordChar(c); }
};

/// What the model finds where its readings agree, else -1.
inline int agreed(SearchModel model, const std::string& text, const std::string& pattern) {
    const int first = model.found(text, pattern);
    for (int reading = 1; reading < 4; ++reading) {
        model.goOnBehindFind = (reading & 1) != 0;
        model.marksChain = (reading & 2) != 0;
        if (model.found(text, pattern) != first) {
            return -1;
        }
    }
    return first;
}
