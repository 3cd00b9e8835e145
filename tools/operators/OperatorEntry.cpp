// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/OperatorFile.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

using vela::ApnTypes;

// Words between spaces.
constexpr std::string_view kWithoutField =
    " server proxy port mmsproxy mmsport mmsc mtu mtu_v4 mtu_v6 apn_set_id bearer bearer_bitmask "
    "carrier_id always_on user_visible user_editable network_type_bitmask ";
constexpr std::string_view kUsed =
    " mcc mnc carrier apn user password authtype type protocol roaming_protocol modem_cognitive "
    "profile_id max_conns max_conns_time wait_time carrier_enabled skip_464xlat mvno_type "
    "mvno_match_data ";
constexpr std::string_view kTypesWithoutBit = " vsim bip enterprise rcs oem_paid oem_private ";
constexpr std::string_view kMvnoTypes = " spn imsi gid iccid ";
constexpr unsigned int kTypesOfAny = 0xFF;  // default to cbs

bool contains(std::string_view words, std::string_view word) {
    return words.find(' ' + std::string(word) + ' ') != std::string_view::npos;
}

bool isCode(std::string_view digits, std::size_t least) {
    return digits.size() >= least && digits.size() <= 3 &&
           digits.find_first_not_of("0123456789") == std::string_view::npos;
}

/** Reads one element's attributes into an entry, one concern at a time; what cannot be read as
 * asked becomes a note. */
class Reader {
  public:
    Reader(const Attributes& attributes, OperatorEntry& entry)
        : attributes(attributes), entry(entry) {}

    void read() {
        readNames();
        readOperator();
        readApn();
        readTypes();
        readIPTypes();
        readCredentials();
        readClass();
        readLimits();
        readFlags();
    }

  private:
    /** The first reason counts. */
    void refuse(std::string reason) {
        if (entry.refusal.empty()) {
            entry.refusal = std::move(reason);
        }
    }

    void note(std::string text) { entry.notes.push_back(std::move(text)); }

    /** An attribute's value; empty also without the attribute. */
    std::string_view text(std::string_view name) const {
        const auto found = std::find_if(attributes.begin(), attributes.end(),
                                        [name](const auto& item) { return item.first == name; });
        return found == attributes.end() ? std::string_view() : found->second;
    }

    /** An attribute as text for messages: authtype "7" */
    std::string cite(std::string_view name) const {
        return std::string(name) + ' ' + inQuotes(text(name));
    }

    /** What one of some words stands for; null, and complained of, when it is another. */
    Json choice(std::string_view name, const Json& words,
                void (Reader::*complain)(std::string) = &Reader::note) {
        Names known;
        for (const auto& item : words.items()) {
            if (sameLetters(trim(text(name)), item.key())) {
                return item.value();
            }
            known.push_back(item.key());
        }
        known.erase(known.begin(), known.begin() + (known.front().empty() ? 1 : 0));
        (this->*complain)(cite(name) + " is not " + alternatives(known));
        return {};
    }

    void set(const char* field, const Json& value) {
        if (!value.is_null()) {
            entry.fields[field] = value;
        }
    }

    void readNames() {
        for (const auto& [name, value] : attributes) {
            if (!contains(kWithoutField, name)) {
                if (!contains(kUsed, name)) {
                    note("unknown attribute " + printable(name) + " left out");
                }
            } else if (!trim(value).empty()) {
                entry.notSent.emplace_back(name);
            }
        }
    }

    void readOperator() {
        const std::string_view mcc = trim(text("mcc"));
        const std::string_view mnc = trim(text("mnc"));
        if (!isCode(mcc, 3)) {
            refuse(cite("mcc") + " is not 3 digits: no operator");
        } else if (!isCode(mnc, 2)) {
            refuse(cite("mnc") + " is not 2 or 3 digits: no operator");
        } else {
            entry.mcc = mcc;
            entry.mnc = mnc;
        }
        entry.carrier = text("carrier");
        const std::string_view type = trim(text("mvno_type"));
        const std::string_view data = trim(text("mvno_match_data"));
        if (type.empty()) {
            if (!data.empty()) {
                note("mvno_match_data without mvno_type: taken as the host operator's");
            }
            return;
        }
        if (!contains(kMvnoTypes, toLower(type))) {
            note("unknown mvno_type " + inQuotes(type));
        }
        if (data.empty()) {
            note("mvno_type without mvno_match_data");
        }
        entry.mvno = toLower(type) + ':' + std::string(data);
    }

    void readApn() {
        const std::string_view name = trim(text("apn"));
        if (name.size() != text("apn").size()) {
            note("spaces around the APN name removed");
        }
        if (name.size() > kMaxApnName) {
            refuse("APN name of " + std::to_string(name.size()) + " bytes: the modem keeps " +
                   std::to_string(kMaxApnName));
        }
        constexpr std::string_view kUsual = "0123456789abcdefghijklmnopqrstuvwxyz.-_";
        if (name.empty()) {
            note("no APN name: the network decides");
        } else if (toLower(name).find_first_not_of(kUsual) != std::string::npos) {
            note("unusual APN name " + inQuotes(name));
        }
        entry.fields["apn"] = name;
    }

    void readTypes() {
        const Words& known = wordsOf<ApnTypes>();
        unsigned int& mask = entry.types;
        Names lost;
        for (const std::string& name : split(text("type"), ',')) {
            if (name == "*") {
                mask |= kTypesOfAny;
            } else if (const auto place = placeOf(name, known.names)) {
                mask |= static_cast<unsigned int>(known.numbers[*place]);
            } else if (!name.empty()) {
                lost.push_back(printable(name));
                note(contains(kTypesWithoutBit, toLower(name))
                         ? "type " + lost.back() + " left out: a profile has no bit for it"
                         : "unknown type " + inQuotes(name) + " left out");
            }
        }
        if (mask == 0 && !lost.empty()) {
            refuse("none of its types can be expressed: " + join(lost, ", "));
        } else if (mask == 0) {
            mask = kTypesOfAny;
        }
        mask |= (mask & toMask(ApnTypes::DEFAULT)) != 0 ? toMask(ApnTypes::HIPRI) : 0U;
        if ((mask & toMask(ApnTypes::EMERGENCY)) != 0) {
            set("emergency", true);
        }
    }

    void readIPTypes() {
        static const Json words{
            {"", "IPv4"}, {"IP", "IPv4"}, {"IPV6", "IPv6"}, {"IPV4V6", "IPv4v6"}};
        set("home_ip", choice("protocol", words, &Reader::refuse));
        set("roam_ip", choice("roaming_protocol", words));
    }

    void readCredentials() {
        for (const char* name : {"user", "password"}) {
            if (text(name).size() > kMaxCredential) {
                refuse("user or password of more than " + std::to_string(kMaxCredential) +
                       " bytes: the modem keeps no more");
            }
            set(name, text(name).empty() ? Json() : Json(text(name)));
        }
        set("auth", text("user").empty() ? "none" : "PAP_CHAP");
        static const Json types{{"", nullptr}, {"-1", nullptr}, {"0", "none"},
                                {"1", "PAP"},  {"2", "CHAP"},   {"3", "PAP_CHAP"}};
        set("auth", choice("authtype", types));
    }

    void readClass() {
        static const Json yes{{"", false}, {"true", true}, {"false", false}};
        static const Json classes{
            {"", "INET"}, {"0", "INET"}, {"2", "IMS"}, {"3", "ADMN"}, {"4", "APP"}};
        if (choice("modem_cognitive", yes) == true) {
            entry.apnClass = choice("profile_id", classes);
        }
    }

    void readLimits() {
        for (const char* name : {"max_conns", "max_conns_time", "wait_time"}) {
            const std::string_view digits = trim(text(name));
            const char* const end = digits.data() + digits.size();
            int value = -1;
            const auto [last, error] = std::from_chars(digits.data(), end, value);
            if (error == std::errc() && last == end && value >= 0 && value <= kMaxShort) {
                set(name, value);
            } else if (!digits.empty()) {
                note(cite(name) + " is not a number from 0 to " + std::to_string(kMaxShort));
            }
        }
    }

    void readFlags() {
        static const Json yes{{"", true}, {"true", true}, {"false", false}};
        static const Json no{{"", nullptr}, {"-1", nullptr}, {"0", true}, {"1", false}};
        if (choice("carrier_enabled", yes) != true) {
            set("disabled", true);
            note("disabled by the operator");
        }
        set("clat", choice("skip_464xlat", no));
    }

    const Attributes& attributes;
    OperatorEntry& entry;
};

}  // namespace

Json OperatorEntry::wanted(bool hasTypes, bool hasClass) const {
    Json all = fields;
    if (hasTypes) {
        all["types"] = namesOf(types, wordsOf<ApnTypes>());
    }
    if (hasClass && !apnClass.is_null()) {
        all["class"] = apnClass;
    }
    return all;
}

std::string entryTitle(std::size_t line, const std::string& apnName, const std::string& carrier) {
    return "line " + std::to_string(line) + ' ' + inQuotes(apnName) + " (" + printable(carrier) +
           ')';
}

OperatorEntry OperatorEntry::read(const Attributes& attributes, std::size_t line) {
    OperatorEntry entry;
    entry.line = line;
    Reader(attributes, entry).read();
    return entry;
}

}  // namespace velactl
