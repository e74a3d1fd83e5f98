#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// Sets (or, with null, takes away) an environment variable until the end of the scope.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value) : name_{name} {
        if (const char* const before = std::getenv(name)) {
            before_ = before;
        }
        set(value);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable() { set(before_ ? before_->c_str() : nullptr); }

    void set(const char* value) {
        if (value) {
            setenv(name_.c_str(), value, 1);
        } else {
            unsetenv(name_.c_str());
        }
    }

private:
    std::string name_;
    std::optional<std::string> before_;
};
