// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Completion.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>

#include "profiles/Text.h"
#include "scenario/Operation.h"

namespace velactl {

namespace {

/** The files and folders whose names begin so. */
Names filesNamed(const std::string& begun) {
    const std::string folder = begun.substr(0, begun.rfind('/') + 1);
    Names names;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator(folder.empty() ? "." : folder, error)) {
        const std::string name = entry.path().filename();
        if (name.find_first_of(" \"#") == std::string::npos) {
            names.push_back(folder + name + (entry.is_directory(error) ? "/" : ""));
        }
    }
    return names;
}

/** What may stand for "[KEY|ID]", "on|off", "FAULT", "FILE". */
Names wordsFor(const std::string& placeholder, const Operation& operation, const std::string& begun,
               const Present& present) {
    Names words;
    for (const std::string& choice : choicesIn(placeholder)) {
        const Names some = choice == "KEY" || choice == "ID" ? present(choice)
                           : choice == "FILE"                ? filesNamed(begun)
                           : choice == toLower(choice)       ? Names{choice}
                           : operation.values != nullptr     ? operation.values(choice)
                                                             : Names();
        words.insert(words.end(), some.begin(), some.end());
    }
    return words;
}

/** What may stand behind `last`, the latest word of a statement. */
Names nextWords(const Operation& operation, const ScenarioWord& last, const std::string& begun,
                const Present& present) {
    const auto options = optionsOf(operation.options);
    const Option* open = last.isOption() ? findOption(options, last.text) : nullptr;
    if (open != nullptr && !open->value.empty()) {
        return open->choices.empty() ? wordsFor(open->value, operation, begun, present)
                                     : open->choices;
    }
    Names words =
        wordsFor(join(operation.placeholders(kStatement), "|"), operation, begun, present);
    for (const Option& option : options) {
        words.push_back(option.name);
        words.push_back(option.opposite);
    }
    return words;
}

}  // namespace

Names completionsOf(const std::string& line, const Present& present) {
    const std::size_t end = line.find_last_of(' ') + 1;
    const std::string begun = line.substr(end);
    ScenarioWords finished = splitStatement(line.substr(0, end));
    const bool isHelp = !finished.empty() && finished.front().text == "help";
    Names candidates = finished.empty() ? Names{"help", "quit"} : Names();
    finished.erase(finished.begin(), std::next(finished.begin(), isHelp ? 1 : 0));
    for (const Operation& operation :
         operationsNamed(operationsAt(kStatement), textsOf(finished))) {
        const Names name = operation.nameWords();
        const Names next = name.size() > finished.size() ? Names{name[finished.size()]}
                           : isHelp                      ? Names()
                                    : nextWords(operation, finished.back(), begun, present);
        candidates.insert(candidates.end(), next.begin(), next.end());
    }
    std::set<std::string> fitting;
    std::copy_if(
        candidates.begin(), candidates.end(), std::inserter(fitting, fitting.end()),
        [&begun](const std::string& word) { return !word.empty() && word.rfind(begun, 0) == 0; });
    return {fitting.begin(), fitting.end()};
}

}  // namespace velactl
