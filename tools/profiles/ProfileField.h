// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The one table of what a profile has. Options, tables, JSON, masks, help, completion, comparisons,
// the modem's settings and the documentation follow from it; a further field is a further row.
//
// The fields of a profile, or of a request, are a JSON object by key: texts, numbers, booleans and
// lists of texts. A number in place of a word is one of the modem's that has none. Reading words
// ignores case.
#pragma once

#include <vela/Observer.h>
#include <vela/ProfileParams.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

// The words in which the tool reads and prints values.

using Json = nlohmann::ordered_json;
using Names = std::vector<std::string>;
using Numbers = std::vector<std::uint64_t>;

/** The names of an enumeration, and its values, or bits, in the same order. */
struct Words {
    Names names;
    Numbers numbers;
};

/** Of TechType, IPType, AuthType, ApnClass or ApnTypes. */
template <typename Value>
const Words& wordsOf();

/** A number's name; without one the number. */
Json nameOf(std::uint64_t number, const Words& words);

/** The names of the set bits; those without a name together as a hexadecimal number. */
Json namesOf(std::uint64_t mask, const Words& bits);

/** "9 (unknown)" */
inline std::string unknownText(const Json& number) {
    return number.dump() + " (unknown)";
}

template <typename Value>
std::string word(Value value) {
    const Json name = nameOf(static_cast<std::uint64_t>(value), wordsOf<Value>());
    return name.is_string() ? name.get<std::string>() : unknownText(name);
}

inline std::string word(vela::IPType value) {
    return value == vela::IPType::UNKNOWN ? "unknown" : word<vela::IPType>(value);
}

/** Which of the words a text is; empty: none of them. */
std::optional<std::size_t> placeOf(std::string_view text, const Names& words);

// What an option's text means. Otherwise a usage error that names the option and what is right.

/** Which of the words it is. */
std::size_t readOneOf(std::string_view option, std::string_view text, const Names& words);
vela::TechType readTech(std::string_view option, std::string_view text);

/** What is wrong with a number; empty when it is one from `lowest` to `highest`. */
std::string wrongNumber(const std::string& text, std::int64_t lowest, std::int64_t highest);

// More would be cut on its way to the modem.
inline constexpr std::size_t kMaxApnName = 150;
inline constexpr std::size_t kMaxCredential = 127;
inline constexpr int kMaxShort = 65535;
inline constexpr int kMaxIndex = 255;

/** A setting of the modem. */
struct ModemSetting {
    /** Of profiles of 3GPP and of 3GPP2; empty: those have none. */
    const char* name3gpp;
    const char* name3gpp2;
    /** The numbers of the field's words, where they are not the library's; one more is none's. */
    Numbers numbers = {};

    std::string name(vela::TechType tech) const {
        return tech == vela::TechType::TECH_3GPP2 ? name3gpp2 : name3gpp;
    }
    bool isNamed(const std::string& name) const { return name == name3gpp || name == name3gpp2; }
};

/** One field of a profile. */
struct ProfileField {
    enum class Kind { Text, Number, Switch, Word, WordList };
    /** Where it is known: to all, also to filters, only of profiles; of a detail, people are told
     * only what the types at home and when roaming do not tell. */
    enum class Scope { Request, Filter, Profile, Detail };
    /** A password; compared without regard to case; only known when all settings say the same. */
    enum class Trait { None, Secret, AnyCase, Agreed };

    /** Name in JSON; with '-' for '_' also the option's name. */
    const char* key;
    const char* heading;
    const char* help;
    /** Columns of the highest rank are the first to be left out of a table that is too wide; those
     * of rank 0 stay. */
    int rank;
    /** Of which it is made: the first that says anything counts. */
    std::vector<ModemSetting> settings;
    /** A text's bytes, or the highest number. */
    int limit = 0;
    Trait trait = Trait::None;

    // What follows from the type of its values.

    Scope scope = Scope::Request;
    Kind kind = Kind::Text;
    /** What people write for it, of a switch on first; and the library's numbers for that. */
    Names words = {};
    Numbers numbers = {};
    /** Reads and writes it as text or number; null: the library's clients cannot. */
    Json (*get)(const vela::ProfileParams& params) = nullptr;
    void (*set)(vela::ProfileParams& params, const Json& raw) = nullptr;
    std::vector<vela::FilterCriterion> criteria = {};

    bool isSecret() const { return trait == Trait::Secret; }
    /** Whether profiles of the technology have it. */
    bool isKept(vela::TechType tech) const;

    /** Of a profile or a request; null when it is absent. */
    const Json& of(const Json& fields) const {
        static const Json absent;
        const auto found = fields.find(key);
        return found == fields.end() ? absent : *found;
    }
    /** Of what the modem holds, by the names of its settings. */
    Json in(const Json& held, vela::TechType tech) const;
    /** As people write it; throws ToolError, which begins with `option`. */
    Json read(std::string_view option, const std::string& text) const;
    /** The numbers of the words in a setting. */
    const Numbers& numbersOf(const ModemSetting& setting) const {
        return setting.numbers.empty() ? numbers : setting.numbers;
    }
    /** Of a text or number, which is one of the words' codes, and back. */
    Json fromRaw(const Json& raw, const Numbers& codes) const;
    Json toRaw(const Json& value, const Numbers& codes) const;

    /** "--home-ip" */
    std::string option() const;
    /** Of a switch that is off: "--no-clat", "--temporary". */
    std::string offOption() const;
    /** What the option takes, as "IPv4, IPv6 or IPv4v6". */
    std::string valuesText() const;
};

/** All fields, in the order of printing. */
const std::vector<ProfileField>& profileFields();

/** Null when there is none of that key. */
const ProfileField* fieldNamed(std::string_view key);

/** The key of the field that a filter compares; "technology" or "index" for what is none. */
std::string criterionName(vela::FilterCriterion criterion);

/** What parameters ask for, and the parameters that ask for it. */
Json fieldsOf(const vela::ProfileParams& params);
vela::ProfileParams paramsOf(const Json& fields);

/** The keys of fields that profiles of the technology do not have: the library drops them. */
Names fieldsNotKept(const Json& fields, vela::TechType tech);
/** Refuses those. */
void requireKept(const Json& fields, vela::TechType tech);

/** A document in which passwords are masked, unless `showSecrets`: all texts under keys of theirs,
 * or all if it `isSecret` itself. */
Json masked(Json document, bool showSecrets, bool isSecret = false);

/** A value in words, an absent one empty. */
std::string valueText(const Json& value);
std::string valueText(const ProfileField& field, const Json& value, bool showSecrets = true);

/** Whether both have the field's value; of APN names as the library compares them. */
bool isSame(const ProfileField& field, const Json& left, const Json& right);

/** By the fields in which two differ, what either has, under a name each. */
Json differencesOf(const Json& one, const Json& other, const char* oneName, const char* otherName);

/** Whether the types at home and when roaming tell all that the modem keeps of IP types. */
bool hasUsualIPTypes(const Json& fields);

/** The fields without details that those tell. */
Json shownFields(Json fields);

/** The shown fields, as "apn=internet, auth=PAP". */
std::string describe(const Json& fields, bool showSecrets);

/** As answers have them, in order: masked unless `showSecrets`, and beside a text that is not UTF-8
 * its bytes, under its key and "_hex". */
Json toJson(const Json& fields, bool showSecrets);
inline Json toJson(const vela::ProfileParams& params, bool showSecrets) {
    return toJson(fieldsOf(params), showSecrets);
}

}  // namespace velactl
