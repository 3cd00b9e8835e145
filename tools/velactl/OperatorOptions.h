// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>
#include <string>

#include "OperatorFile.h"

namespace velactl {

/** The options that name an operator in a file. */
class OperatorOptions {
  public:
    void addTo(CLI::App& app) {
        app.add_option("--apns", file, "operator file (Android's apns-conf.xml)");
        app.add_option("--plmn", plmn, "the operator, as MCCMNC: 26201 or 310/260");
        app.add_option("--mvno", mvno, "its virtual operator, as TYPE:DATA: gid:BAE0");
    }

    /** Throws ToolError when --plmn or --mvno lacks what it needs. */
    void check() const;

    bool isGiven() const { return !file.empty(); }
    bool namesOperator() const { return !plmn.empty(); }

    OperatorFile load() const { return OperatorFile::load(file); }
    Operator findIn(const OperatorFile& loaded) const {
        return loaded.find(Plmn::parse(plmn), mvno);
    }

  private:
    std::string file;
    std::string plmn;
    std::string mvno;
};

}  // namespace velactl
