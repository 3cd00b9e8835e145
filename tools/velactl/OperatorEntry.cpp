// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "OperatorEntry.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>

#include "AttributeReader.h"
#include "Limits.h"
#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

using vela::ApnClass;
using vela::ApnTypes;
using vela::AuthType;
using vela::IPType;

constexpr std::array<std::string_view, 19> kUsed{
    "mcc",          "mnc",        "carrier",          "apn",
    "user",         "password",   "authtype",         "type",
    "protocol",     "profile_id", "roaming_protocol", "modem_cognitive",
    "max_conns",    "wait_time",  "max_conns_time",   "carrier_enabled",
    "skip_464xlat", "mvno_type",  "mvno_match_data"};
constexpr std::array<std::string_view, 17> kWithoutField{"server",
                                                         "proxy",
                                                         "port",
                                                         "mmsproxy",
                                                         "mmsport",
                                                         "mmsc",
                                                         "mtu",
                                                         "mtu_v4",
                                                         "mtu_v6",
                                                         "apn_set_id",
                                                         "bearer",
                                                         "bearer_bitmask",
                                                         "carrier_id",
                                                         "always_on",
                                                         "user_visible",
                                                         "user_editable",
                                                         "network_type_bitmask"};
constexpr std::array<std::string_view, 6> kTypesWithoutBit{"vsim", "bip",      "enterprise",
                                                           "rcs",  "oem_paid", "oem_private"};
constexpr std::array<std::string_view, 4> kMvnoTypes{"spn", "imsi", "gid", "iccid"};
constexpr unsigned int kTypesOfAny = 0xFF;  // default to cbs

template <std::size_t Count>
bool contains(const std::array<std::string_view, Count>& words, std::string_view text) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

/** Reads one element's attributes into an entry, one concern at a time. */
class Reader : private AttributeReader {
  public:
    Reader(const Attributes& attributes, OperatorEntry& entry)
        : AttributeReader(attributes, entry.notes), attributes(attributes), entry(entry) {}

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

    void readNames() {
        std::set<std::string_view> seen;
        for (const auto& [name, value] : attributes) {
            if (!seen.insert(name).second) {
                note("attribute " + printable(name) + " twice, the first counts");
            } else if (contains(kWithoutField, name)) {
                if (!trim(value).empty()) {
                    entry.notSent.push_back(name);
                }
            } else if (!contains(kUsed, name)) {
                note("unknown attribute " + printable(name) + " left out");
            }
        }
        entry.carrier = text("carrier");
        if (!isUtf8(entry.carrier) || !isUtf8(text("apn"))) {
            note("text is not UTF-8");
        }
    }

    void readOperator() {
        const auto isCode = [](std::string_view code, std::size_t least) {
            return code.size() >= least && code.size() <= 3 &&
                   code.find_first_not_of("0123456789") == std::string_view::npos;
        };
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
        readMvno();
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
        entry.mvnoType = toLower(type);
        entry.mvnoData = data;
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
        const bool isUsual = std::all_of(name.begin(), name.end(), [](char letter) {
            return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') ||
                   (letter >= 'a' && letter <= 'z') || letter == '.' || letter == '-' ||
                   letter == '_';
        });
        if (name.empty()) {
            note("no APN name: the network decides");
        } else if (!isUsual) {
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

    std::optional<IPType> ipType(std::string_view name) const {
        const std::string_view protocol = trim(text(name));
        if (protocol.empty() || sameLetters(protocol, "IP")) {
            return IPType::V4;
        }
        if (sameLetters(protocol, "IPV6")) {
            return IPType::V6;
        }
        return sameLetters(protocol, "IPV4V6") ? std::optional(IPType::V4V6) : std::nullopt;
    }

    void readIPTypes() {
        constexpr const char* kRight = ": a profile knows IP, IPV6 and IPV4V6";
        if (const auto home = ipType("protocol")) {
            entry.params.setHomeIPType(*home);
        } else {
            refuse(cite("protocol") + kRight);
        }
        if (const auto roam = ipType("roaming_protocol")) {
            entry.params.setRoamIPType(*roam);
        } else {
            note(cite("roaming_protocol") + " left out" + kRight);
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
        const long byDefault = user.empty() ? 0 : 3;
        const long given = number("authtype", -1, 3).value_or(-1);
        entry.params.setAuthType(static_cast<AuthType>(given < 0 ? byDefault : given));
    }

    void readClass() {
        const auto id = number("profile_id", 0, 2147483647);
        if (!flag("modem_cognitive", false)) {
            return;
        }
        switch (id.value_or(text("profile_id").empty() ? 0 : -1)) {
            case 0:
                entry.apnClass = ApnClass::INET;
                break;
            case 2:
                entry.apnClass = ApnClass::IMS;
                break;
            case 3:
                entry.apnClass = ApnClass::ADMN;
                break;
            case 4:
                entry.apnClass = ApnClass::APP;
                break;
            default:
                note(cite("profile_id") + " has no APN class");
        }
    }

    void readLimits() {
        if (const auto value = number("max_conns", 0, kMaxShort)) {
            entry.params.setMaxPdnsConnPerBlock(static_cast<int>(*value));
        }
        if (const auto value = number("max_conns_time", 0, kMaxShort)) {
            entry.params.setMaxPdnConnTimer(static_cast<int>(*value));
        }
        if (const auto value = number("wait_time", 0, kMaxShort)) {
            entry.params.setPdnReqWaitInterval(static_cast<int>(*value));
        }
    }

    void readFlags() {
        if (!flag("carrier_enabled", true)) {
            entry.params.setIsApnDisabled(true);
            note("disabled by the operator");
        }
        const long skip = number("skip_464xlat", -1, 1).value_or(-1);
        if (skip >= 0) {
            entry.params.setIsClatEnabled(skip == 0);
        }
    }

    const Attributes& attributes;
    OperatorEntry& entry;
};

}  // namespace

vela::ProfileParams OperatorEntry::withTypes() const {
    vela::ProfileParams result = params;
    result.setApnTypesMask(types);
    return result;
}

vela::ProfileParams OperatorEntry::withClass() const {
    vela::ProfileParams result = params;
    if (apnClass) {
        result.setApnClass(*apnClass);
    }
    return result;
}

vela::ProfileParams OperatorEntry::profile() const {
    vela::ProfileParams result = withClass();
    result.setApnTypesMask(types);
    return result;
}

OperatorEntry OperatorEntry::read(const Attributes& attributes, std::size_t line) {
    OperatorEntry entry;
    entry.line = line;
    Reader(attributes, entry).read();
    return entry;
}

}  // namespace velactl
