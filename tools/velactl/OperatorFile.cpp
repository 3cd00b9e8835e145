// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "OperatorFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <pugixml.hpp>

#include "FileText.h"
#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

constexpr std::size_t kMaxFile = 64U << 20U;

/** Finds lines and columns of ever larger offsets. */
class Position {
  public:
    explicit Position(std::string_view text) : text(text) {}

    void moveTo(std::size_t offset) {
        for (offset = std::min(offset, text.size()); at < offset; ++at) {
            if (text[at] == '\n') {
                ++currentLine;
                lineStart = at + 1;
            }
        }
    }

    std::size_t line() const { return currentLine; }
    std::size_t column() const { return at - lineStart + 1; }

  private:
    std::string_view text;
    std::size_t at = 0;
    std::size_t currentLine = 1;
    std::size_t lineStart = 0;
};

std::size_t offsetOf(const pugi::xml_node& node) {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
}

Attributes attributesOf(const pugi::xml_node& node) {
    Attributes attributes;
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        attributes.emplace_back(attribute.name(), attribute.value());
    }
    return attributes;
}

void requireText(std::string_view text, const std::string& name) {
    if (text.empty()) {
        throw refused(name + ": the file is empty; an operator file starts with <apns>");
    }
    const std::string_view start = text.substr(0, 2);
    if (start == "\xFE\xFF" || start == "\xFF\xFE" || text.find('\0') != std::string_view::npos) {
        throw refused(name + ": not UTF-8 text; an operator file is XML in UTF-8");
    }
}

/** The root, or what stands in its place. A document is one element: an XML reader may not pass
 * over what else there is. */
pugi::xml_node soleRoot(const pugi::xml_document& document, pugi::xml_node& stranger) {
    pugi::xml_node root;
    for (const pugi::xml_node& node : document.children()) {
        const bool isText = node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
        if (isText || (node.type() == pugi::node_element && root)) {
            stranger = node;
            return root;
        }
        root = node.type() == pugi::node_element ? node : root;
    }
    return root;
}

pugi::xml_node parseRoot(pugi::xml_document& document, std::string_view text,
                         const std::string& name) {
    const pugi::xml_parse_result result = document.load_buffer(
        text.data(), text.size(), pugi::parse_default | pugi::parse_fragment, pugi::encoding_utf8);
    Position position(text);
    const auto place = [&] {
        return name + ':' + std::to_string(position.line()) + ':' +
               std::to_string(position.column()) + ": ";
    };
    if (!result) {
        position.moveTo(static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)));
        throw refused(place() + "broken XML: " + toLower(result.description()));
    }
    pugi::xml_node stranger;
    const pugi::xml_node root = soleRoot(document, stranger);
    if (stranger) {
        position.moveTo(offsetOf(stranger) + std::strspn(stranger.value(), " \t\r\n"));
        throw refused(place() + "broken XML: " +
                      (stranger.type() == pugi::node_element
                           ? "a second root element, <" + printable(stranger.name()) + '>'
                           : "text outside the root element"));
    }
    if (!root) {
        throw refused(place() + "broken XML: no element; an operator file has <apns>");
    }
    if (std::string_view(root.name()) != "apns") {
        position.moveTo(offsetOf(root));
        throw refused(place() + "the root element is <" + printable(root.name()) +
                      ">; an operator file has <apns>");
    }
    return root;
}

std::string operatorKey(const OperatorEntry& entry) {
    return entry.mcc + '/' + entry.mnc + ' ' + entry.mvnoType + ':' + toLower(entry.mvnoData);
}

bool isOf(const Operator& candidate, const std::string& mvno) {
    const std::string own =
        candidate.mvnoType.empty() ? "" : candidate.mvnoType + ':' + candidate.mvnoData;
    return sameLetters(own, mvno);
}

/** Up to five names and how many more there are. */
std::string someOf(const std::vector<std::string>& names) {
    constexpr std::size_t kSome = 5;
    if (names.size() <= kSome) {
        return join(names, ", ");
    }
    return join({names.begin(), names.begin() + kSome}, ", ") + " and " +
           grouped(names.size() - kSome) + " more";
}

std::string otherMncForm(const std::string& mnc) {
    return mnc.size() == 2 ? '0' + mnc : mnc.front() == '0' ? mnc.substr(1) : mnc;
}

std::string titleOf(const Operator& candidate) {
    return candidate.plmn.text() + " (" + printable(candidate.carrier()) + ')';
}

/** How far an MNC is from the one that was asked for; one that goes on with its digits is near. */
int distance(const std::string& mnc, const std::string& wanted) {
    const bool goesOn = mnc.compare(0, wanted.size(), wanted) == 0;
    return goesOn ? 0 : 1 + std::abs(std::stoi(mnc) - std::stoi(wanted));
}

std::string nearOperators(std::vector<Operator> operators, const Plmn& plmn) {
    std::erase_if(operators, [](const Operator& each) { return !each.mvnoType.empty(); });
    const std::string holds = "it holds " + counted(operators.size(), "operator");
    std::erase_if(operators, [&](const Operator& each) { return each.plmn.mcc != plmn.mcc; });
    std::stable_sort(operators.begin(), operators.end(), [&](const auto& left, const auto& right) {
        return distance(left.plmn.mnc, plmn.mnc) < distance(right.plmn.mnc, plmn.mnc);
    });
    std::vector<std::string> near;
    for (const Operator& each : operators) {
        if (each.plmn.mnc == otherMncForm(plmn.mnc)) {
            return "it has " + titleOf(each) + ", whose MNC is written with " +
                   std::to_string(each.plmn.mnc.size()) + " digits";
        }
        near.push_back(titleOf(each));
    }
    return holds + (near.empty() ? ", none of MCC " + plmn.mcc
                                 : ", of MCC " + plmn.mcc + ": " + someOf(near));
}

std::string nearMvnos(const std::vector<Operator>& operators, const Plmn& plmn) {
    std::vector<std::string> names;
    for (const Operator& candidate : operators) {
        if (candidate.plmn == plmn && !candidate.mvnoType.empty()) {
            names.push_back(candidate.mvnoType + ':' + printable(candidate.mvnoData));
        }
    }
    return names.empty() ? "it has no virtual operators there" : "it has " + someOf(names);
}

}  // namespace

Plmn Plmn::parse(std::string_view text) {
    std::string digits(text);
    if (digits.size() > 3 && (digits[3] == '/' || digits[3] == '-')) {
        digits.erase(3, 1);
    }
    const bool isNumber = digits.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber || digits.size() < 5 || digits.size() > 6) {
        throw badUsage("--plmn: " + inQuotes(text) +
                       " is no network; write MCC (3 digits) and MNC (2 or 3 digits), as 26201 or "
                       "310/260");
    }
    return {digits.substr(0, 3), digits.substr(3)};
}

std::string Operator::name() const {
    return plmn.text() + (mvnoType.empty() ? "" : ' ' + mvnoType + ':' + printable(mvnoData));
}

OperatorFile OperatorFile::load(const std::string& path) {
    return parse(readText(path, kMaxFile, "an operator file"), path);
}

OperatorFile OperatorFile::parse(std::string_view text, const std::string& name) {
    requireText(text, name);
    pugi::xml_document document;
    OperatorFile file;
    file.fileName = name;
    Position position(text);
    for (const pugi::xml_node& node : parseRoot(document, text, name).children()) {
        position.moveTo(offsetOf(node));
        const std::string line = "line " + std::to_string(position.line()) + ": ";
        if (node.type() != pugi::node_element) {
            file.odd.push_back(line + "text between the elements left out");
        } else if (std::string_view(node.name()) != "apn") {
            file.odd.push_back(line + "element <" + printable(node.name()) + "> left out");
        } else {
            file.all.push_back(OperatorEntry::read(attributesOf(node), position.line()));
            if (node.first_child()) {
                file.all.back().notes.emplace_back("what stands inside <apn> left out");
            }
        }
    }
    return file;
}

std::vector<Operator> OperatorFile::operators() const {
    std::vector<Operator> result;
    std::map<std::string, std::size_t> places;
    for (const OperatorEntry& entry : all) {
        if (entry.mcc.empty()) {
            continue;
        }
        const auto [place, isNew] = places.emplace(operatorKey(entry), result.size());
        if (isNew) {
            result.push_back({{entry.mcc, entry.mnc}, entry.mvnoType, entry.mvnoData, {}});
        }
        result[place->second].entries.push_back(&entry);
    }
    return result;
}

std::vector<const OperatorEntry*> OperatorFile::strays() const {
    std::vector<const OperatorEntry*> result;
    for (const OperatorEntry& entry : all) {
        if (entry.mcc.empty()) {
            result.push_back(&entry);
        }
    }
    return result;
}

Operator OperatorFile::find(const Plmn& plmn, const std::string& mvno) const {
    if (!mvno.empty() && mvno.find(':') == std::string::npos) {
        throw badUsage("--mvno: " + inQuotes(mvno) +
                       " is no virtual operator; write TYPE:DATA, as "
                       "gid:BAE0 or spn:Example");
    }
    std::vector<Operator> known = operators();
    const auto found = std::find_if(known.begin(), known.end(), [&](const Operator& candidate) {
        return candidate.plmn == plmn && isOf(candidate, mvno);
    });
    if (found != known.end()) {
        return *found;
    }
    const bool hasHost = std::any_of(known.begin(), known.end(), [&](const Operator& candidate) {
        return candidate.plmn == plmn;
    });
    throw refused(fileName + ": no operator " + plmn.text() +
                  (mvno.empty() ? "" : ' ' + printable(mvno)) +
                  (mvno.empty() && hasHost ? " itself" : "") + "; " +
                  (hasHost ? nearMvnos(known, plmn) : nearOperators(known, plmn)));
}

}  // namespace velactl
