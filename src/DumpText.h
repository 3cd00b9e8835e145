// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <locale>
#include <optional>
#include <sstream>
#include <string>

#include "vela/ProfileTypes.h"

namespace vela {

/** Collects one dump line. Numbers are plain decimal, whatever locale the process has chosen. */
class DumpText {
  public:
    enum class Booleans { Words, Digits };

    explicit DumpText(Booleans booleans = Booleans::Words) {
        stream.imbue(std::locale::classic());
        if (booleans == Booleans::Words) {
            stream << std::boolalpha;
        }
    }

    /** Appends the value as it stands. */
    template <typename Value>
    DumpText& operator<<(const Value& value) {
        stream << value;
        return *this;
    }

    /** Appends `label`, "=", the value and ",", or nothing when there is no value. */
    template <typename Value>
    DumpText& field(const char* label, const std::optional<Value>& value) {
        if (value) {
            stream << label << '=' << *value << ',';
        }
        return *this;
    }

    std::string str() const { return stream.str(); }

  private:
    std::ostringstream stream;
};

}  // namespace vela
