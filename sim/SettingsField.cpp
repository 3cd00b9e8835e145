// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "SettingsField.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <type_traits>

namespace velasim {

namespace {

using Scope = SettingsField::Scope;

// Byte order: the numbers are copied from and to their own width, so the host's order is right.

#define VELASIM_FIELD(member, scope)                                                 \
    SettingsField {                                                                  \
#member, offsetof(Settings, member##_valid), offsetof(Settings, member),     \
            sizeof(Settings::member), std::is_array_v < decltype(Settings::member)>, \
            std::is_enum_v < decltype(Settings::member)>, Scope::scope               \
    }

constexpr SettingsField kFields[] = {
    VELASIM_FIELD(apn_type_mask, Shared),
    VELASIM_FIELD(persistence_flag, Shared),
    VELASIM_FIELD(clat_enabled, Shared),
    VELASIM_FIELD(profile_name, Shared),
    VELASIM_FIELD(apn_name, ThreeGpp),
    VELASIM_FIELD(user_name, ThreeGpp),
    VELASIM_FIELD(password, ThreeGpp),
    VELASIM_FIELD(pdp_type, ThreeGpp),
    VELASIM_FIELD(override_home_pdp_type, ThreeGpp),
    VELASIM_FIELD(lte_roaming_pdp_type, ThreeGpp),
    VELASIM_FIELD(umts_roaming_pdp_type, ThreeGpp),
    VELASIM_FIELD(max_pdn_connections_per_block, ThreeGpp),
    VELASIM_FIELD(max_pdn_connection_timer, ThreeGpp),
    VELASIM_FIELD(pdn_request_wait_interval, ThreeGpp),
    VELASIM_FIELD(apn_disabled_flag, ThreeGpp),
    VELASIM_FIELD(emergency_calls_support, ThreeGpp),
    VELASIM_FIELD(authentication_preference, ThreeGpp),
    VELASIM_FIELD(apn_class, ThreeGpp),
    VELASIM_FIELD(apn_string_3gpp2, ThreeGpp2),
    VELASIM_FIELD(user_id, ThreeGpp2),
    VELASIM_FIELD(pdn_level_user_id, ThreeGpp2),
    VELASIM_FIELD(authentication_password, ThreeGpp2),
    VELASIM_FIELD(pdn_level_authentication_password, ThreeGpp2),
    VELASIM_FIELD(pdn_type_3gpp2, ThreeGpp2),
    VELASIM_FIELD(authentication_protocol, ThreeGpp2),
    VELASIM_FIELD(pdn_level_authentication_protocol, ThreeGpp2),
    VELASIM_FIELD(apn_class_3gpp2, ThreeGpp2),
};

#undef VELASIM_FIELD

char* bytesOf(Settings& settings) {
    return reinterpret_cast<char*>(&settings);
}
const char* bytesOf(const Settings& settings) {
    return reinterpret_cast<const char*>(&settings);
}

template <typename Number>
std::uint64_t read(const char* from) {
    Number number{};
    std::memcpy(&number, from, sizeof number);
    return number;
}

template <typename Number>
void write(char* to, std::uint64_t value) {
    const auto number = static_cast<Number>(value);
    std::memcpy(to, &number, sizeof number);
}

}  // namespace

std::span<const SettingsField> SettingsField::all() {
    return kFields;
}

const SettingsField* SettingsField::named(std::string_view name) {
    const auto* found = std::find_if(std::begin(kFields), std::end(kFields),
                                     [&](const auto& field) { return field.name == name; });
    return found == std::end(kFields) ? nullptr : found;
}

bool SettingsField::belongsTo(Technology technology) const {
    return scope == Scope::Shared ||
           (scope == Scope::ThreeGpp2) == (technology == Technology::ThreeGpp2);
}

bool SettingsField::isSecret() const {
    return name.find("password") != std::string_view::npos;
}

bool SettingsField::isPresent(const Settings& settings) const {
    return bytesOf(settings)[validOffset] != 0;
}

void SettingsField::setPresent(Settings& settings, bool present) const {
    bytesOf(settings)[validOffset] = present ? 1 : 0;
}

std::string SettingsField::text(const Settings& settings) const {
    const char* start = bytesOf(settings) + offset;
    return {start, strnlen(start, size)};
}

bool SettingsField::isTerminated(const Settings& settings) const {
    return std::memchr(bytesOf(settings) + offset, 0, size) != nullptr;
}

std::uint64_t SettingsField::number(const Settings& settings) const {
    const char* from = bytesOf(settings) + offset;
    switch (size) {
        case 1:
            return read<std::uint8_t>(from);
        case 2:
            return read<std::uint16_t>(from);
        case 4:
            return read<std::uint32_t>(from);
        default:
            return read<std::uint64_t>(from);
    }
}

std::uint64_t SettingsField::largestNumber() const {
    return ~std::uint64_t{0} >> (64 - 8 * size);
}

void SettingsField::writeNumber(Settings& settings, std::uint64_t value) const {
    char* to = bytes(settings);
    switch (size) {
        case 1:
            return write<std::uint8_t>(to, value);
        case 2:
            return write<std::uint16_t>(to, value);
        case 4:
            return write<std::uint32_t>(to, value);
        default:
            return write<std::uint64_t>(to, value);
    }
}

char* SettingsField::bytes(Settings& settings) const {
    return bytesOf(settings) + offset;
}

void SettingsField::copy(const Settings& from, Settings& to) const {
    setPresent(to, isPresent(from));
    std::memcpy(bytes(to), bytesOf(from) + offset, size);
}

}  // namespace velasim
