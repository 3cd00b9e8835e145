// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What people are told of operations and their options, before and while they write them.
#include <algorithm>
#include <filesystem>

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

/** Each section with what `line` makes of its operations. */
template <typename Line>
std::string bySection(const Operations& list, const std::string& mark, const std::string& start,
                      Line line) {
    std::string text;
    std::string section;
    for (const Operation& operation : list) {
        if (section != operation.section) {
            section = operation.section;
            text += (text.empty() ? "" : "\n") + mark + section + start;
        }
        text += line(operation);
    }
    return text;
}

/** The meaning of each option, under the heading of its group. */
std::string helpOf(const std::vector<Option>& options) {
    std::string text;
    std::string heading;
    for (const Option& option : options) {
        const std::string group = option.groupName();
        const std::string title = !group.empty()                      ? group
                                  : (option.groups & kEveryVerb) != 0 ? "options of every verb"
                                                                      : "options";
        text += title == heading ? "" : '\n' + title + ":\n";
        heading = title;
        text += entry({option.usage()}, option.help);
    }
    return text;
}

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
    return text + helpOf(options);
}

/** Of all at that place, or of those that are named: on the command line also of statements. */
std::string helpOn(const Arguments& given) {
    const bool isVerb = !operationsAt(given.place & kVerb, given.words).empty();
    const unsigned place = isVerb ? kVerb : kShell;
    const Operations named = operationsAt(place, given.words);
    if (named.empty()) {
        operationOf(given.place, given.words);  // says so
    }
    const auto line = [place](const Operation& each) {
        return entry(each.usage(place), each.help);
    };
    const std::string text =
        (named.size() == 1 ? helpOfOne(named.front(), place) : bySection(named, "", ":\n", line)) +
        (isVerb ? helpOf(optionsOf(kEveryVerb)) : "");
    const std::string legend =
        "fields: --apn NAME and others, which add lists in its help.\n"
        "operator: --apns FILE --plmn MCCMNC [--mvno TYPE:DATA], whose entries take the\n"
        "place of fields.\n";
    return !given.words.empty() ? text
           : !isVerb            ? text + '\n' + legend
                     : "Reads and changes the data profiles of a cellular modem through libvelar.\n"
                       "Usage: velactl [options] VERB ...\n\n" +
                           text + "\nThe options may stand before or behind the verb.\n" + legend +
                           "Exit status: 0 done, 1 refused or not found, 2 bad usage.\n";
}

/** The list as a document has it: for each heading a table. */
std::string tablesOf(const Operations& list, unsigned place) {
    return bySection(list, "### ", "\n\n| | |\n|---|---|\n", [place](const Operation& operation) {
        return "| `" + join(split(join(operation.usage(place), " "), '|'), "\\|") + "` | " +
               operation.help + " |\n";
    });
}

void help(Stage& stage, const Arguments& arguments) {
    const std::string text = arguments.has("--verbs") ? tablesOf(operationsAt(kVerb), kVerb)
                             : arguments.has("--statements")
                                 ? tablesOf(operationsAt(kScenario), kScenario)
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
