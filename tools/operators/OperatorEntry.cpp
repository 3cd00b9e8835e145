// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/OperatorEntry.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "profiles/ProfileField.h"
#include "profiles/Text.h"
#include "profiles/Words.h"

namespace velactl {

namespace {

using vela::ApnClass;
using vela::ApnTypes;
using vela::AuthType;
using vela::IPType;

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

template <typename Value>
using Choice = std::vector<std::pair<const char*, Value>>;

const Choice<IPType> kProtocols{
    {"", IPType::V4}, {"IP", IPType::V4}, {"IPV6", IPType::V6}, {"IPV4V6", IPType::V4V6}};
const Choice<std::optional<AuthType>> kAuthTypes{{"", std::nullopt},    {"-1", std::nullopt},
                                                 {"0", AuthType::NONE}, {"1", AuthType::PAP},
                                                 {"2", AuthType::CHAP}, {"3", AuthType::PAP_CHAP}};
const Choice<ApnClass> kClasses{{"", ApnClass::INET},
                                {"0", ApnClass::INET},
                                {"2", ApnClass::IMS},
                                {"3", ApnClass::ADMN},
                                {"4", ApnClass::APP}};
const Choice<std::optional<bool>> kTranslations{
    {"", std::nullopt}, {"-1", std::nullopt}, {"0", true}, {"1", false}};

struct Limit {
    const char* name;
    void (vela::ProfileParams::*set)(int);
};
constexpr Limit kLimits[] = {{"max_conns", &vela::ProfileParams::setMaxPdnsConnPerBlock},
                             {"max_conns_time", &vela::ProfileParams::setMaxPdnConnTimer},
                             {"wait_time", &vela::ProfileParams::setPdnReqWaitInterval}};

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
        readMvno();
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

    /** Which of some words an attribute is; empty, and complained of, when it is another. */
    template <typename Value>
    std::optional<Value> choice(std::string_view name, const Choice<Value>& words,
                                void (Reader::*complain)(std::string) = &Reader::note) {
        std::vector<std::string> known;
        for (const auto& [word, value] : words) {
            if (sameLetters(trim(text(name)), word)) {
                return value;
            }
            known.emplace_back(word);
        }
        (this->*complain)(
            cite(name) + " is not " +
            alternatives({known.begin() + (known.front().empty() ? 1 : 0), known.end()}));
        return std::nullopt;
    }

    /** Only the word "true" counts. */
    bool flag(std::string_view name, bool ifAbsent) {
        const Choice<bool> words{{"true", true}, {"false", false}};
        return trim(text(name)).empty() ? ifAbsent : choice(name, words).value_or(false);
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

    void readMvno() {
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
        entry.params.setApnName(std::string(name));
    }

    void readTypes() {
        unsigned int mask = 0;
        std::vector<std::string> lost;
        for (const std::string& name : split(text("type"), ',')) {
            if (name == "*") {
                mask |= kTypesOfAny;
            } else if (const auto type = typeNamed(name)) {
                mask |= toMask(*type);
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
        entry.types = mask;
        if (entry.has(ApnTypes::EMERGENCY)) {
            entry.params.setIsEmergencySupported(true);
        }
    }

    void readIPTypes() {
        if (const auto home = choice("protocol", kProtocols, &Reader::refuse)) {
            entry.params.setHomeIPType(*home);
        }
        if (const auto roam = choice("roaming_protocol", kProtocols)) {
            entry.params.setRoamIPType(*roam);
        }
    }

    void readCredentials() {
        const std::string_view user = text("user");
        const std::string_view password = text("password");
        if (std::max(user.size(), password.size()) > kMaxCredential) {
            refuse("user or password of more than " + std::to_string(kMaxCredential) +
                   " bytes: the modem keeps no more");
        }
        if (!user.empty()) {
            entry.params.setUserName(std::string(user));
        }
        if (!password.empty()) {
            entry.params.setPassword(std::string(password));
        }
        const auto given = choice("authtype", kAuthTypes).value_or(std::nullopt);
        entry.params.setAuthType(
            given.value_or(user.empty() ? AuthType::NONE : AuthType::PAP_CHAP));
    }

    void readClass() {
        if (flag("modem_cognitive", false)) {
            entry.apnClass = choice("profile_id", kClasses);
        }
    }

    void readLimits() {
        for (const Limit& limit : kLimits) {
            const std::string_view digits = trim(text(limit.name));
            const char* const end = digits.data() + digits.size();
            int value = -1;
            const auto [last, error] = std::from_chars(digits.data(), end, value);
            if (error == std::errc() && last == end && value >= 0 && value <= kMaxShort) {
                (entry.params.*limit.set)(value);
            } else if (!digits.empty()) {
                note(cite(limit.name) + " is no number from 0 to " + std::to_string(kMaxShort));
            }
        }
    }

    void readFlags() {
        if (!flag("carrier_enabled", true)) {
            entry.params.setIsApnDisabled(true);
            note("disabled by the operator");
        }
        if (const auto translates = choice("skip_464xlat", kTranslations).value_or(std::nullopt)) {
            entry.params.setIsClatEnabled(*translates);
        }
    }

    const Attributes& attributes;
    OperatorEntry& entry;
};

}  // namespace

vela::ProfileParams OperatorEntry::profile(bool hasTypes, bool hasClass) const {
    vela::ProfileParams result = params;
    if (hasTypes) {
        result.setApnTypesMask(types);
    }
    if (hasClass && apnClass) {
        result.setApnClass(*apnClass);
    }
    return result;
}

std::string entryTitle(std::size_t line, const std::string& apnName, const std::string& carrier) {
    return "line " + std::to_string(line) + ' ' + inQuotes(apnName) + " (" + printable(carrier) +
           ')';
}

OperatorEntry OperatorEntry::readOperator(const Attributes& attributes) {
    OperatorEntry entry;
    Reader(attributes, entry).readOperator();
    return entry;
}

OperatorEntry OperatorEntry::read(const Attributes& attributes, std::size_t line) {
    OperatorEntry entry;
    entry.line = line;
    Reader(attributes, entry).read();
    return entry;
}

}  // namespace velactl
