// Text of other encodings, by the system's converter.

#include "check/decodedText.h"

#include <array>
#include <cerrno>
#include <iconv.h>

namespace {

/// A converter that closes by itself.
class Converter {
public:
    explicit Converter(const std::string& encoding)
        : converter_{iconv_open("UTF-8", encoding.c_str())} {}
    ~Converter() {
        if (known()) {
            iconv_close(converter_);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    [[nodiscard]] bool known() const {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system's own sign of failure
        return converter_ != reinterpret_cast<iconv_t>(-1);
    }

    std::optional<std::string> convert(std::string bytes) {
        std::string text;
        std::array<char, 4096> piece{};
        char* from = bytes.data();
        std::size_t left = bytes.size();
        for (std::size_t result = 1; left != 0 || result == failed;) {
            char* to = piece.data();
            std::size_t room = piece.size();
            result = iconv(converter_, &from, &left, &to, &room);
            if (result == failed && errno != E2BIG) {
                return std::nullopt;
            }
            text.append(piece.data(), piece.size() - room);
        }
        return text;
    }

private:
    static constexpr auto failed = static_cast<std::size_t>(-1);
    iconv_t converter_;
};

} // namespace

std::optional<std::string> decodedText(std::string_view bytes, const std::string& encoding) {
    Converter converter{encoding};
    return converter.known() ? converter.convert(std::string{bytes}) : std::nullopt;
}
