// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// How the library remembers profiles: reading, expiring, showing and comparing them.
#include <wds_service_v01.h>

#include <algorithm>
#include <map>
#include <utility>

#include "Model.h"

namespace coherence {

using velasim::Fault;
using velasim::Technology;

Model::Cached* Model::look(unsigned slot) {
    const auto& key = keys.at(slot);
    const auto found = key && !isBlocked ? cache.find(key->token) : cache.end();
    return found == cache.end() ? nullptr : &found->second;
}

/** The entries of one profile, as the library walks them. */
std::vector<std::uint64_t> Model::tokensOf(ProfileId id) const {
    std::vector<std::uint64_t> tokens;
    for (const auto& [token, cached] : cache) {
        if (cached && cached->id == id) {
            tokens.push_back(token);
        }
    }
    return tokens;
}

Model::Cached Model::read(ProfileId id) {
    velasim::Settings settings{};
    const auto reply =
        modem.request(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, id, modem.table().count(id) != 0,
                      [&] { settings = modem.table().at(id); });
    if (!reply.isSuccess) {
        excuses.add(id, kReadFailed);
        return std::nullopt;
    }
    const bool isGarbled = reply.faults.count(Fault::GarbageEnumerators) != 0;
    const bool isUnterminated = reply.faults.count(Fault::UnterminatedText) != 0;
    if (isGarbled) {
        garble(settings);
    }
    Entry entry{id, Image::of(settings, id.is3gpp2()), settings.persistence_flag != 0, false, 0,
                {}};
    if (isUnterminated) {
        entry.image.unterminate();
    }
    if (isGarbled || isUnterminated) {
        excuses.add(id, kReadGarbled);
    }
    return entry;
}

bool Model::readAll(Technology technology) {
    constexpr std::size_t kLongestList = 255;
    std::vector<ProfileId> ids;
    const auto reply =
        modem.request(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, ModelModem::anyOf(technology), true, [&] {
            for (const auto& [id, settings] : modem.table()) {
                if (id.technology == technology) {
                    ids.push_back(id);
                }
            }
        });
    if (!reply.isSuccess) {
        excuses.addAll(technology, kListFailed);
        return false;
    }
    if (reply.faults.count(Fault::ListOverrun) != 0) {
        ids.resize(kLongestList, {Technology::ThreeGpp, 0});  // the rest of the array is zero
    }
    for (const auto& id : ids) {
        cache[nextToken++] = read(id);
    }
    return true;
}

void Model::dropAll() {
    const auto dying = std::exchange(cache, {});
    for (const auto& [token, cached] : dying) {
        expire(cached);
    }
}

/** The listeners of what died run, in the order of their registration. */
void Model::expire(const Cached& dying) {
    if (dying) {
        keys.run(dying->listeners, dump());
    }
}

std::vector<std::string> Model::dump() const {
    std::vector<std::string> lines{"Cache:"};
    for (const auto& [token, cached] : std::map(cache.begin(), cache.end())) {
        lines.push_back("  " + std::to_string(token) + ": " +
                        (cached ? cached->image.text(cached->id) : "null"));
    }
    lines.emplace_back("Pending:");
    for (const auto& change : pending) {
        lines.push_back("  " + change.text());
    }
    return lines;
}

void Model::compareWithModem(Figures& figures) const {
    std::map<ProfileId, std::vector<const Image*>> images;
    for (const auto& [id, settings] : modem.homeTable()) {
        images[id];
    }
    for (const auto& [token, cached] : cache) {
        if (cached) {
            images[cached->id].push_back(&cached->image);
        }
    }
    for (const auto& [id, ofId] : images) {
        if (!modem.arrivals.empty() || excuses.reasonFor(id) != nullptr) {
            ++figures.excused;
            continue;
        }
        const auto stored = modem.homeTable().find(id);
        const bool isStored = stored != modem.homeTable().end();
        if (!isStored || ofId.size() != 1 ||
            !ofId[0]->isStoredAs(Image::of(stored->second, id.is3gpp2()))) {
            auto text = id.text() + " is cached";
            for (const auto* image : ofId) {
                text += " as " + velactl::printable(image->text(id));
            }
            throw Mismatch(text + " but stored as " +
                           (isStored ? velasim::describe(stored->second, id.technology) : "none"));
        }
        ++figures.compared;
    }
}

}  // namespace coherence
