// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueEnum.h"

#include "plugin/values/MChoiceReader.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

MValueList::MValueList(std::int32_t& index, std::vector<std::string> choices,
                       std::int32_t defaultIndex)
    : MValueNumber(index, {0, static_cast<std::int32_t>(choices.size()) - 1, 1, 1, defaultIndex}),
      choices_(std::move(choices)) {
    assert(!choices_.empty());
}

std::string MValueList::Show(std::int32_t value) const {
    return choices_[static_cast<std::size_t>(Clamp(value))];
}

std::optional<std::int32_t> MValueList::Read(const std::string& text) const {
    return MReadChoice(choices_, text);
}

MValueEnum::MValueEnum(std::int32_t& value, const std::vector<Enumerator>& enumerators,
                       std::int32_t defaultValue)
    : MValueNumber(value,
                   {enumerators.front().value, enumerators.back().value, 1, 1, defaultValue}) {
    for (const Enumerator& enumerator : enumerators) {
        values_.push_back(enumerator.value);
        names_.push_back(enumerator.name);
    }
    assert(std::is_sorted(values_.begin(), values_.end()));
}

std::string MValueEnum::Show(std::int32_t value) const {
    const std::optional<std::size_t> place = PlaceOf(value);
    return place ? names_[*place] : Format(value);
}

std::optional<std::int32_t> MValueEnum::Read(const std::string& text) const {
    const std::optional<int> place = MReadChoice(names_, text);
    return place ? std::optional(values_[static_cast<std::size_t>(*place)]) : std::nullopt;
}

double MValueEnum::PositionOf(std::int32_t value) const {
    const auto last = static_cast<double>(values_.size() - 1);
    return last > 0 ? static_cast<double>(PlaceOf(value).value_or(0)) / last : 0;
}

std::int32_t MValueEnum::ValueAt(double x) const {
    const auto last = static_cast<double>(values_.size() - 1);
    const double place = std::clamp(std::floor(last * x + 0.5), 0.0, last);
    return values_[std::isnan(place) ? 0 : static_cast<std::size_t>(place)];
}

std::int32_t MValueEnum::Moved(double steps) const {
    const auto last = static_cast<double>(values_.size() - 1);
    const auto place = static_cast<double>(PlaceOf(Value()).value_or(0));
    return values_[static_cast<std::size_t>(std::clamp(std::round(place + steps), 0.0, last))];
}

std::optional<std::size_t> MValueEnum::PlaceOf(std::int32_t value) const {
    const auto found = std::find(values_.begin(), values_.end(), value);
    if (found == values_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - values_.begin());
}
