// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0

#include <sstream>

#include "ToolRun.h"
#include "profiles/Output.h"
#include "profiles/Text.h"
#include "scenario/Operation.h"

namespace velactl {
namespace {

using Kind = ProfileField::Kind;
using Scope = ProfileField::Scope;

/** One of two values that the field can have. */
std::string sampleOf(const ProfileField& field, std::size_t which) {
    if (field.kind == Kind::Text) {
        return which == 0 ? "one" : "two";
    }
    return field.kind == Kind::Number ? std::to_string(which) : field.words.at(which);
}

/** The field's option with its sample. */
std::vector<std::string> optionsOf(const ProfileField& field, std::size_t which) {
    if (field.kind == Kind::Switch) {
        return {which == 0 ? field.option() : field.offOption()};
    }
    return {field.option(), sampleOf(field, which)};
}

/** A verb or statement with the samples of all fields of the scope. */
std::vector<std::string> withAll(std::vector<std::string> words, std::size_t which, Scope scope) {
    for (const ProfileField& field : profileFields()) {
        if (field.scope == scope) {
            const auto options = optionsOf(field, which);
            words.insert(words.end(), options.begin(), options.end());
        }
    }
    return words;
}

Json fieldsWithAll(std::size_t which) {
    Json fields = Json::object();
    for (const ProfileField& field : profileFields()) {
        fields[field.key] = field.read(field.option(), sampleOf(field, which));
    }
    return fields;
}

TEST(Fields, EachIsReadToldAndComparedByItsRow) {
    const Json one = fieldsWithAll(0);
    const Json two = fieldsWithAll(1);
    std::size_t criteria = 2;  // technology and index
    for (const ProfileField& field : profileFields()) {
        criteria += field.criteria.size();
        EXPECT_EQ(fieldNamed(field.key), &field);
        EXPECT_TRUE(isSame(field, one, one));
        EXPECT_FALSE(isSame(field, one, two)) << field.key;
        EXPECT_EQ(toJson(one, true)[field.key], field.of(one)) << field.key;
        EXPECT_EQ(toJson(one, false)[field.key] == "***", field.isSecret());
        EXPECT_THAT(describe(one, true), HasSubstr(valueText(field, field.of(one), true)));

        ProfileRecord changed{vela::TechType::TECH_3GPP, 1, one};
        changed.fields[field.key] = field.of(two);
        const Json changes = changesBetween({{changed.tech, 1, one}}, {changed}, false);
        EXPECT_EQ(changes.at(0)["fields"].size(), 1U) << field.key;
        if (field.kind != Kind::Text) {
            EXPECT_THAT(complaintOf([&] { field.read(field.option(), "?"); }),
                        HasSubstr(field.option() + ": \"?\""));
        }
    }
    EXPECT_EQ(criteria, 18U);
    EXPECT_EQ(criterionName(vela::FilterCriterion::HomeIPType), "home_ip");
    EXPECT_EQ(criterionName(vela::FilterCriterion::RoamIPType), "roam_ip");
    EXPECT_TRUE(isSame(*fieldNamed("apn"), one, {{"apn", "ONE"}}));
}

/** A number of the modem that has no word is never shown as another one, nor as nothing. */
TEST_F(ModemFileTest, ShowsWhatTheModemHoldsEvenIfItMeansNothing) {
    struct Case {
        const char* setting;
        const char* field;
        Json value;
        const char* text;
    };
    const Case cases[] = {
        {"override_home_pdp_type=9", "home_override", 9, "9 (unknown)"},
        {"override_home_pdp_type=9", "home_ip", 9, "9 (unknown)"},
        {"pdp_type=1", "home_ip", 1, "1 (unknown)"},
        {"lte_roaming_pdp_type=200", "lte_roaming", 200, "200 (unknown)"},
        {"umts_roaming_pdp_type=200", "umts_roaming", 200, "200 (unknown)"},
        {"authentication_preference=9", "auth", 9, "9 (unknown)"},
        {"apn_class=77", "class", 77, "77 (unknown)"},
        {"apn_type_mask=268435457", "types", {"default", "0x10000000"}, "default,0x10000000"},
        {"pdp_type=IPv4 override_home_pdp_type=255", "home_override", {}, "IPv4"}};
    const std::string scenario = directory / "scenario";
    for (const Case& each : cases) {
        std::ofstream(scenario) << "foreign create " << each.setting << "\nexpect agree\nshow\n";
        const ToolRun shown = runTool({"run", scenario});
        EXPECT_EQ(shown.status, 0) << shown.err;
        EXPECT_THAT(shown.out, HasSubstr(each.text)) << each.setting;
        const Json told = Json::parse(runTool({"--json", "run", scenario}).out);
        const Json profile = told["files"][0]["played"][2]["modem"][0];
        EXPECT_EQ(profile.value(each.field, Json()), each.value) << profile;
    }
}

TEST_F(ModemFileTest, RefusesWhat3gpp2ProfilesDoNotHave) {
    run({"add", "--apn", "a", "--tech", "3GPP2"});
    for (const ProfileField& field : profileFields()) {
        if (field.scope != Scope::Request) {
            continue;
        }
        const bool isKept = field.isKept(vela::TechType::TECH_3GPP2);
        for (std::vector<std::string> line : {std::vector<std::string>{"add"}, {"modify", "1"}}) {
            const auto options = optionsOf(field, 1);
            line.insert(line.end(), options.begin(), options.end());
            line.insert(line.end(), {"--tech", "3GPP2"});
            const ToolRun result = run(line);
            EXPECT_EQ(result.status, isKept ? 0 : 2) << join(line, " ") << result.err;
            EXPECT_EQ(result.err.find(std::string(field.key) + ": a 3GPP2") == std::string::npos,
                      isKept)
                << result.err;
        }
    }
    EXPECT_THAT(run({"data-call", "--apn", "b", "--tech", "3GPP2", "--roam-ip", "IPv4"}).err,
                HasSubstr("a 3GPP2 profile does not keep roam_ip"));
}

TEST_F(ModemFileTest, EachFieldIsFoundEverywhere) {
    EXPECT_EQ(run(withAll({"add"}, 0, Scope::Request)).status, 0);
    const std::string help = run({"add", "--help"}).out;
    const std::string list = run({"list"}).out;
    const std::string shown = run({"show", "1"}).out;
    const auto profile = runJson({"list"})["profiles"][0];
    for (const ProfileField& field : profileFields()) {
        EXPECT_TRUE(profile.contains(field.key) || field.scope == Scope::Detail) << field.key;
        if (field.scope == Scope::Request) {
            EXPECT_THAT(help, HasSubstr(field.option()));
            EXPECT_THAT(list, HasSubstr(field.heading));
            EXPECT_THAT(shown, HasSubstr(field.key));
            auto modify = optionsOf(field, 1);
            modify.insert(modify.begin(), {"modify", "1"});
            const auto changes = runJson(modify)["changes"];
            EXPECT_TRUE(changes[0]["fields"].contains(field.key)) << field.key;
            EXPECT_FALSE(changes[0]["settings"].empty()) << field.key;
        }
    }
    EXPECT_EQ(run(withAll({"match"}, 0, Scope::Request)).status, 1);
    EXPECT_EQ(run(withAll({"match"}, 1, Scope::Request)).status, 0);

    const std::string scenario = directory / "scenario";
    const auto line = [](const std::string& name, std::size_t which) {
        return '\n' + join(withAll({name}, which, Scope::Request), " ");
    };
    std::ofstream(scenario) << line("add a", 0) << line("expect modem a", 0)
                            << " --made-by vela --persistent"
                            << " --pdp-type IPv4 --lte-roaming IPv4 --umts-roaming IPv4\n"
                            << line("foreign create", 1) << line("expect modem 2", 1)
                            << " --made-by others"
                            << " --home-override IPv6\n";
    EXPECT_EQ(runTool({"run", scenario}).err, "");
}

TEST(Fields, AreCompletedAndDocumented) {
    const auto options = completionsOf("expect modem 1 --", [](const auto&) { return Names(); });
    const std::string document = contentOf(VELACTL_DOCS "/velactl.md");
    for (const ProfileField& field : profileFields()) {
        EXPECT_THAT(document, HasSubstr(std::string("| `") + field.key + "` | `" + field.option() +
                                        "` | " + field.help + " | " + field.valuesText() + " |\n"));
        EXPECT_THAT(options, testing::Contains(field.option()));
        if (field.kind == Kind::Word) {
            EXPECT_THAT(completionsOf("expect modem 1 " + field.option() + ' ',
                                      [](const auto&) { return Names(); }),
                        testing::UnorderedElementsAreArray(field.words));
        }
    }
}

TEST(Tables, FitTheWidthAndSayWhatIsNotShown) {
    const ProfileRecord record{vela::TechType::TECH_3GPP, 1, fieldsWithAll(0)};
    for (std::size_t width = 4; width < 300; width += 3) {
        std::ostringstream text;
        profileTable({record}, false).print(text, 2, width);
        const Names lines = split(text.str(), '\n');
        for (const std::string& line : lines) {
            EXPECT_LE(displayWidth(line), width) << line;
        }
        const std::string all = join(lines, " ");
        for (const ProfileField& field : profileFields()) {
            const bool isShown = lines.front().find(field.heading) != std::string::npos;
            const bool isNamed = all.find(field.key, all.find("not shown: ")) != std::string::npos;
            EXPECT_TRUE(width < 40 || isShown || isNamed) << field.key << '\n' << text.str();
        }
    }

    std::ostringstream out;
    profileTable({record}, false, readColumns("--columns", "APN,home-ip,index")).print(out, 0, 12);
    EXPECT_EQ(out.str(), "APN  HOME  …\none  IPv4  1\n");
    for (const char* wrong : {"apn,colour", ""}) {
        EXPECT_THAT(complaintOf([&] { readColumns("--columns", wrong); }),
                    HasSubstr("use technology, index, made_by"));
    }
}

/** What is told of the difference. */
std::string toldOf(const ProfileRecord& before, const ProfileRecord& after) {
    std::ostringstream text;
    const OutputOptions options;
    Output output(text, text, options);
    const Json changes = changesBetween({before}, {after}, false);
    output.changes(changes);
    return text.str() + changes.dump();
}

TEST(Changes, AreToldWhateverTheFieldsSay) {
    const Json settings{{"pdp_type", 0},
                        {"lte_roaming_pdp_type", 0},
                        {"umts_roaming_pdp_type", 0},
                        {"password", "old"}};
    const auto with = [&](const Json& others) {
        Json all = settings;
        all.update(others);
        return recordOf(vela::TechType::TECH_3GPP, 1, all);
    };
    const ProfileRecord before = with(Json::object());
    EXPECT_THAT(toldOf(before, before), HasSubstr("nothing"));
    const std::string told = toldOf(before, with({{"pdp_type", 3}, {"override_home_pdp_type", 0}}));
    EXPECT_THAT(told, HasSubstr(": pdp_type IPv4 -> IPv4v6; home_override (absent) -> IPv4\n"));
    EXPECT_THAT(told, HasSubstr(R"("pdp_type":{"before":"0","after":"3"})"));
    EXPECT_THAT(toldOf(before, with({{"password", "new"}, {"pdn_level_user_id", "x"}})),
                HasSubstr(": password *** -> ***; pdn_level_user_id (absent) -> x\n"));
    ProfileRecord unseen = before;
    unseen.settings = {};
    EXPECT_THAT(toldOf(before, unseen), HasSubstr("nothing"));
}

}  // namespace
}  // namespace velactl
