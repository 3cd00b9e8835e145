// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The words in which the tool reads and prints the library's values. Reading ignores case.
#pragma once

#include <vela/ProfileTypes.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

std::string word(vela::TechType value);
/** "IPv4", "IPv6", "IPv4v6", "unknown"; any other value of this and the next two as a number. */
std::string word(vela::IPType value);
std::string word(vela::AuthType value);
std::string word(vela::ApnClass value);

/** The names of the set bits, lowest first; bits without a name together as one hexadecimal number.
 */
std::vector<std::string> typeWords(unsigned int mask);

/** typeWords() joined by commas, "none" without a bit. */
std::string typesText(unsigned int mask);

/** The bit of an APN type's name. */
std::optional<vela::ApnTypes> typeNamed(std::string_view name);

// What an option's word means. Otherwise a usage error that names the option and the words that are
// right.
vela::TechType readTech(std::string_view option, std::string_view text);
vela::IPType readIPType(std::string_view option, std::string_view text);
vela::AuthType readAuthType(std::string_view option, std::string_view text);
vela::ApnClass readApnClass(std::string_view option, std::string_view text);
/** A comma list of type names, or "none". */
unsigned int readTypes(std::string_view option, std::string_view text);

}  // namespace velactl
