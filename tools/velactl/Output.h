// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Options.h"
#include "ProfileRecord.h"

namespace velactl {

/**
 * Where a verb's answer goes: text as it comes, or, with --json, one document at the end. A verb
 * tells both; what is not asked for is dropped. Passwords are masked here and nowhere else.
 */
class Output {
  public:
    /** The options must outlive this object. */
    Output(std::ostream& out, std::ostream& err, const Options& options)
        : out(out), err(err), options(options) {}

    bool isText() const { return !options.json; }
    bool showSecrets() const { return options.showSecrets; }

    /** The stream of text answers; use it only when isText(). */
    std::ostream& text() { return out; }

    void line(std::string_view text = {});

    /** A heading and the table below it. */
    void profiles(std::string_view heading, const ProfileRecords& records);

    /** One indented line per change; "nothing" when there is none. */
    void changes(const std::vector<ProfileChange>& changes);

    /** The JSON answer. */
    Json& document() { return answer; }

    /** Aside of the answer, on the error stream, in both forms. */
    void note(std::string_view text);

    /** Prints the JSON document, if that is the form. */
    void finish();

    Json toJson(const std::vector<ProfileChange>& changes) const;
    Json toJson(const ProfileRecords& records) const;

  private:
    std::ostream& out;
    std::ostream& err;
    const Options& options;
    Json answer = Json::object();
};

}  // namespace velactl
