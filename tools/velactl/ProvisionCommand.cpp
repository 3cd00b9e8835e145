// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ProvisionCommand.h"

#include <chrono>

#include "OperatorSurvey.h"
#include "Progress.h"
#include "ProvisionReport.h"
#include "Text.h"

namespace velactl {

using Kind = EntryOutcome::Kind;

void ProvisionCommand::addOptions(CLI::App& app) {
    source.addTo(app);
    app.add_flag("--all", isAll, "every operator of the file, each on a fresh modem");
    app.add_flag("--twice", isTwice,
                 "with --all: again on the same modem, which must change nothing");
    app.add_flag("--explain", isExplained, "also tell which attributes a profile has no field for");
}

Exit ProvisionCommand::run(const Context& context) {
    source.check();
    if (!source.isGiven()) {
        throw badUsage("provision: --apns FILE is missing, the operator file");
    }
    if (source.namesOperator() == isAll) {
        throw badUsage("provision: either --plmn MCCMNC or --all, which operator to provision");
    }
    if (isAll && !context.options.modem.file.empty()) {
        throw badUsage("provision --all uses fresh modems; leave --modem out");
    }
    if (isTwice && !isAll) {
        throw badUsage("provision: --twice goes with --all; otherwise run it again");
    }
    const OperatorFile file = source.load();
    return isAll ? runAll(context, file) : runOne(context, file);
}

Exit ProvisionCommand::runOne(const Context& context, const OperatorFile& file) {
    const Operator candidate = source.findIn(file);
    Workbench bench = context.openWorkbench();
    const ProvisionResult result = Provisioner(bench).run(candidate, context.output.showSecrets());
    reportProvisioning(context.output, candidate, result, file, isExplained);
    const bool areEqual = context.tellAgreement(bench);
    context.save(bench);
    const std::size_t missing = result.count(Kind::Missing);
    if (missing != 0) {
        context.output.note(counted(missing, "entry") + " found no place in the modem" +
                            (result.refusals.empty() ? "" : ": " + result.refusals.back()));
    }
    for (const std::string& failure : result.failures()) {
        context.output.note(failure);
    }
    if (result.count(Kind::Refused) == result.entries.size()) {
        context.output.note("no entry of " + candidate.name() + " can be a profile");
        return Exit::Refused;
    }
    return result.isDone() && areEqual ? Exit::Done : Exit::Refused;
}

Exit ProvisionCommand::runAll(const Context& context, const OperatorFile& file) {
    const auto start = std::chrono::steady_clock::now();
    const std::vector<Operator> operators = file.operators();
    OperatorSurvey survey(context.output, file, isExplained);
    {
        // Log lines tell the progress themselves, and would be mixed up with it.
        const std::size_t columns = context.options.log ? 0 : context.errColumns;
        Progress progress(context.err, columns, operators.size());
        for (const Operator& candidate : operators) {
            progress.next(candidate.name());
            Workbench bench = context.openWorkbench();
            Provisioner provisioner(bench);
            survey.add(candidate, provisioner.run(candidate, context.output.showSecrets()),
                       bench.disagreements());
            if (isTwice) {
                survey.addSecond(candidate, provisioner.run(candidate, false));
            }
        }
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return survey.report(seconds.count()) ? Exit::Done : Exit::Refused;
}

}  // namespace velactl
