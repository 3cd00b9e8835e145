// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ProfileOptions.h"

#include <functional>

#include "Limits.h"
#include "NumberOption.h"
#include "ProfileRecord.h"
#include "Text.h"
#include "ToolError.h"
#include "Words.h"

namespace velactl {

namespace {

void addFlag(CLI::App& app, const std::string& name, std::optional<bool>& value,
             const std::string& description) {
    const auto wrongValue = [name](const std::string& text) {
        const bool isRight = text == "true" || text == "false";
        return isRight ? "" : inQuotes(text) + " is no switch; use --" + name + " or --no-" + name;
    };
    app.add_flag_function(
           "--" + name + ",!--no-" + name, [&value](std::int64_t count) { value = count > 0; },
           description)
        ->check(wrongValue);
}

const std::string& checkedText(const char* option, const std::string& text, std::size_t limit) {
    if (text.size() > limit) {
        throw badUsage(std::string(option) + ": " + std::to_string(text.size()) +
                       " bytes; a profile holds " + std::to_string(limit));
    }
    return text;
}

}  // namespace

void ProfileOptions::addTo(CLI::App& app) {
    app.add_option("--apn", apn, "APN name");
    app.add_option("--user", user, "user name for authentication");
    app.add_option("--password", password, "password for authentication");
    app.add_option("--auth", auth, "none, PAP, CHAP or PAP_CHAP");
    app.add_option("--home-ip", homeIp, "IP type at home: IPv4, IPv6 or IPv4v6");
    app.add_option("--roam-ip", roamIp, "IP type when roaming");
    app.add_option("--types", types, "APN types, as default,mms");
    app.add_option("--class", apnClass, "APN class: IMS, ADMN, INET or APP");
    addFlag(app, "clat", clat, "use 464XLAT");
    addFlag(app, "emergency", emergency, "emergency calls are supported");
    addFlag(app, "disabled", disabled, "the APN is disabled");
    addNumber(app, "--max-conns", maxConns, "PDN connections allowed per time block", 0, kMaxShort);
    addNumber(app, "--max-conns-time", maxConnsTime, "that time block in seconds", 0, kMaxShort);
    addNumber(app, "--wait-time", waitTime, "wait between PDN requests in seconds", 0, kMaxShort);
}

void ProfileOptions::applyTo(vela::ProfileParams& params) const {
    if (apn) {
        params.setApnName(checkedText("--apn", *apn, kMaxApnName));
    }
    if (user) {
        params.setUserName(checkedText("--user", *user, kMaxCredential));
    }
    if (password) {
        params.setPassword(checkedText("--password", *password, kMaxCredential));
    }
    if (auth) {
        params.setAuthType(readAuthType("--auth", *auth));
    }
    if (homeIp) {
        params.setHomeIPType(readIPType("--home-ip", *homeIp));
    }
    if (roamIp) {
        params.setRoamIPType(readIPType("--roam-ip", *roamIp));
    }
    if (types) {
        params.setApnTypesMask(readTypes("--types", *types));
    }
    if (apnClass) {
        params.setApnClass(readApnClass("--class", *apnClass));
    }
    if (clat) {
        params.setIsClatEnabled(*clat);
    }
    if (emergency) {
        params.setIsEmergencySupported(*emergency);
    }
    if (disabled) {
        params.setIsApnDisabled(*disabled);
    }
    if (maxConns) {
        params.setMaxPdnsConnPerBlock(*maxConns);
    }
    if (maxConnsTime) {
        params.setMaxPdnConnTimer(*maxConnsTime);
    }
    if (waitTime) {
        params.setPdnReqWaitInterval(*waitTime);
    }
}

vela::ProfileParams ProfileOptions::params() const {
    vela::ProfileParams result;
    applyTo(result);
    return result;
}

bool ProfileOptions::isEmpty() const {
    return toJson(params(), false).empty();
}

}  // namespace velactl
