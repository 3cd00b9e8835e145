// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What people are told of operations and their options, before and while they write them.
#include <algorithm>
#include <filesystem>

#include "scenario/Help.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kMargin = 4;
constexpr std::size_t kColumn = 26;

/** Adds the pieces to the text, and begins another line at that column where one has no room. */
void append(std::string& text, const Names& pieces, std::size_t column) {
    for (const std::string& piece : pieces) {
        const std::size_t end = text.size() - (text.rfind('\n') + 1);
        const bool isFirst = text.empty() || text.back() == ' ';
        const std::size_t start = column + piece.size() < kWidth ? column : kMargin;
        text += end + piece.size() >= kWidth ? '\n' + std::string(start, ' ') : isFirst ? "" : " ";
        text += piece;
    }
}

/** What it is, and from a column on what it means. */
std::string entry(const Names& pieces, const std::string& meaning) {
    std::string text = "  ";
    append(text, pieces, kMargin);
    const std::size_t end = text.size() - (text.rfind('\n') + 1);
    text += end + 2 <= kColumn ? std::string(kColumn - end, ' ') : '\n' + std::string(kColumn, ' ');
    append(text, split(meaning, ' '), kColumn);
    return text + '\n';
}

constexpr HelpForm kText = {[](const std::string& title) { return '\n' + title + ":\n"; }, entry};

std::string helpOfOne(const Operation& operation, unsigned place) {
    std::string text = place == kVerb ? "Usage: velactl [options] " : "";
    append(text, operation.usage(place), kMargin);
    text += "\n  ";
    append(text, split(operation.help, ' '), 2);
    text += '\n';
    const auto options = optionsOf(operation.options);
    Names placeholders = operation.placeholders(place);
    std::transform(options.begin(), options.end(), std::back_inserter(placeholders),
                   [](const Option& option) { return option.value; });
    for (const std::string& each : placeholders) {
        const std::string name = join(choicesIn(each), "|");
        const Names values = valuesOf(name);
        text += values.empty() ? "" : '\n' + entry({name}, join(values, ", "));
    }
    return text + helpOf(options, kText);
}

/** Of all at that place, or of those that are named: on the command line also of statements. */
std::string helpOn(const Arguments& given) {
    const bool isVerb = !operationsAt(given.place & kVerb, given.words).empty();
    const unsigned place = isVerb ? kVerb : kShell;
    const Operations named = operationsAt(place, given.words);
    if (named.empty()) {
        operationOf(given.place, given.words);  // says so
    }
    const std::string text =
        (named.size() == 1 ? helpOfOne(named.front(), place) : helpOf(named, place, kText)) +
        (isVerb ? helpOf(optionsOf(kEveryVerb), kText) : "");
    const std::string legend =
        "fields: --apn NAME and others, which add lists in its help.\n"
        "operator: --apns FILE --plmn MCCMNC [--mvno TYPE:DATA], whose entries take the\n"
        "place of fields.\n";
    return !given.words.empty() ? text
           : !isVerb
               ? text + '\n' + legend
               : std::string(kPurpose) + "\nUsage: velactl [options] VERB ...\n\n" + text + '\n' +
                     kPlaceOfOptions + '\n' + legend + "Exit status: " + kExitStatus + '\n';
}

/** The list as a document has it: for each heading a table. */
std::string tablesOf(unsigned place) {
    const HelpForm table = {
        [](const std::string& title) { return "\n### " + title + "\n\n| | |\n|---|---|\n"; },
        [](const Names& pieces, const std::string& meaning) {
            return "| `" + join(split(join(pieces, " "), '|'), "\\|") + "` | " + meaning + " |\n";
        }};
    return helpOf(operationsAt(place), place, table);
}

void help(Stage& stage, const Arguments& arguments) {
    const std::string text = arguments.has("--verbs")        ? tablesOf(kVerb)
                             : arguments.has("--statements") ? tablesOf(kScenario)
                             : arguments.has("--man")        ? manualOf(arguments.words)
                             : arguments.has("--completion")
                                 ? completionFor(arguments.text("--completion"))
                                 : helpOn(arguments);
    if (stage.story().isText()) {
        stage.story().text() << text;
    }
    stage.document()["text"] = text;
}

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
Names wordsFor(const std::string& placeholder, const std::string& begun, const Present& present) {
    Names words;
    for (const std::string& choice : choicesIn(placeholder)) {
        const Names some = choice == "KEY" || choice == "ID" ? present(choice)
                           : choice == "FILE"                ? filesNamed(begun)
                           : choice == toLower(choice)       ? Names{choice}
                                                             : valuesOf(choice);
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
        return open->choices.empty() ? wordsFor(open->value, begun, present) : open->choices;
    }
    Names words = wordsFor(join(operation.placeholders(kShell), "|"), begun, present);
    for (const Option& option : options) {
        words.insert(words.end(), {option.name, option.opposite});
    }
    return words;
}

}  // namespace

std::string helpOf(const std::vector<Option>& options, const HelpForm& form) {
    std::string text;
    std::string heading;
    for (const Option& option : options) {
        const std::string group = option.groupName();
        const std::string title = !group.empty()                      ? group
                                  : (option.groups & kEveryVerb) != 0 ? "options of every verb"
                                                                      : "options";
        text += title == heading ? "" : form.heading(title);
        heading = title;
        text += form.entry({option.usage()}, option.help);
    }
    return text;
}

std::string helpOf(const Operations& list, unsigned place, const HelpForm& form) {
    std::string text;
    std::string section;
    for (const Operation& operation : list) {
        text += section == operation.section ? "" : form.heading(operation.section);
        section = operation.section;
        text += form.entry(operation.usage(place), operation.help);
    }
    return text.substr(text.starts_with('\n') ? 1 : 0);
}

Operations helpOperations() {
    const auto check = [](const Arguments& arguments) { helpOn(arguments); };
    return {
        sectionOf("Help"),
        {"help [VERB...]", "this help, or that of a verb", help, kTables, kVerb, check},
        {"help [STATEMENT...]", "this help, or one statement with all its options", help,
         kNoOptions, kShell, check},
        {"quit", "leave the shell",
         [](Stage& stage, const Arguments& /*arguments*/) { stage.isOver = true; }, kNoOptions,
         kShell},
    };
}

Names completionsOf(const std::string& line, const Present& present) {
    const std::size_t end = line.find_last_of(' ') + 1;
    const std::string begun = line.substr(end);
    ScenarioWords finished = splitStatement(line.substr(0, end));
    const bool isHelp = !finished.empty() && finished.front().text == "help";
    finished.erase(finished.begin(), finished.begin() + (isHelp ? 1 : 0));
    Names candidates;
    for (const Operation& operation :
         operationsAt(kShell, namesIn(finished, &ScenarioWord::text))) {
        const Names name = operation.nameWords();
        const Names next = name.size() > finished.size() ? Names{name[finished.size()]}
                           : isHelp                      ? Names()
                                    : nextWords(operation, finished.back(), begun, present);
        candidates.insert(candidates.end(), next.begin(), next.end());
    }
    std::erase_if(candidates, [&](const auto& word) {
        return word.empty() || !std::string_view(word).starts_with(begun);
    });
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    return candidates;
}

}  // namespace velactl
