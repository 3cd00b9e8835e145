// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <tuple>

#include "vela/ProfileParams.h"

namespace vela {

/**
 * One field that client parameters and a modem profile hold in the same form. A profile class lists
 * its fields once; reading, matching, comparing and giving back all walk that list.
 */
template <typename Profile, typename Value>
struct SharedField {
    bool (ProfileParams::*has)() const;
    Value (ProfileParams::*get)() const;
    void (ProfileParams::*set)(Value);
    std::optional<Value> Profile::*field;

    /** Takes the parameters' value, if they have one. */
    void read(const ProfileParams& params, Profile& profile) const {
        if ((params.*has)()) {
            profile.*field = (params.*get)();
        }
    }

    /** False when the parameters have a value that the profile lacks or has differently. */
    bool matches(const ProfileParams& params, const Profile& profile) const {
        return !(params.*has)() || profile.*field == (params.*get)();
    }

    /** Puts a value that does not match into `diff`, and says so in `changed`. */
    void compare(const ProfileParams& params, const Profile& profile, ProfileParams& diff,
                 bool& changed) const {
        if (!matches(params, profile)) {
            (diff.*set)((params.*get)());
            changed = true;
        }
    }

    /** Gives the profile's value, if it has one, to the parameters. */
    void write(const Profile& profile, ProfileParams& params) const {
        if (profile.*field) {
            (params.*set)(*(profile.*field));
        }
    }

    /** Takes another profile's value, if it has one. */
    void copy(const Profile& from, Profile& to) const {
        if (from.*field) {
            to.*field = from.*field;
        }
    }
};

template <typename Profile, typename Value>
SharedField(bool (ProfileParams::*)() const, Value (ProfileParams::*)() const,
            void (ProfileParams::*)(Value), std::optional<Value> Profile::*)
    -> SharedField<Profile, Value>;

/** Calls `visit` with every field of a list. */
template <typename Fields, typename Visit>
void forEachField(const Fields& fields, Visit visit) {
    std::apply([&](const auto&... field) { (visit(field), ...); }, fields);
}

/** True when all fields of a list match. */
template <typename Fields, typename Profile>
bool allMatch(const Fields& fields, const ProfileParams& params, const Profile& profile) {
    return std::apply([&](const auto&... field) { return (field.matches(params, profile) && ...); },
                      fields);
}

}  // namespace vela
