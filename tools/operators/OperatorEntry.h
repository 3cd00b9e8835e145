// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "operators/XmlReader.h"
#include "profiles/ProfileField.h"

namespace velactl {

/** "line 12 "internet" (Carrier)" */
std::string entryTitle(std::size_t line, const std::string& apnName, const std::string& carrier);

/**
 * One `apn` element of an operator's file, in the library's words. Nothing of it gets lost: what
 * the library has no words for is named in `notes` or `notSent`, and what cannot be used at all has
 * a refusal. A plain value.
 */
struct OperatorEntry {
    /** Line in its file, from 1. */
    std::size_t line = 0;
    std::string carrier;
    /** Empty, with a refusal, when the file's are not made of 3, and 2 or 3 digits. */
    std::string mcc;
    std::string mnc;
    /** "spn:name"; empty: of the host operator. */
    std::string mvno;

    /** All that it asks of a profile but types and class, which are not one profile's affair:
     * several entries may share an APN name, and a class has one owner. */
    Json fields = Json::object();
    /** `ApnTypes` bits. */
    unsigned int types = 0;
    /** In words; null: none. */
    Json apnClass = {};
    /** Why this can be no profile; empty when it can. */
    std::string refusal;
    /** What is odd, or was left out or guessed. */
    Names notes;
    /** Attributes that say something for which a profile has no field. */
    Names notSent;

    bool isUsable() const { return refusal.empty(); }
    std::string apnName() const { return fields.value("apn", ""); }

    /** As one profile, with types and class or without. */
    Json wanted(bool hasTypes, bool hasClass) const;
    vela::ProfileParams profile(bool hasTypes, bool hasClass) const {
        return paramsOf(wanted(hasTypes, hasClass));
    }
    std::string title() const { return entryTitle(line, apnName(), carrier); }
    static OperatorEntry read(const Attributes& attributes, std::size_t line);
    /** No more of it than whose it is. */
    static OperatorEntry readOperator(const Attributes& attributes);
};

}  // namespace velactl
