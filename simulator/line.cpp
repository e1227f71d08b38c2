#include "line.h"

#include <algorithm>

namespace kelvarissim {

namespace {

constexpr double bytesPerMbps = 1e6 / 8 * stepSeconds; // in a step

// Moves a value a part of its way to another one.
void approach(double& value, double target, double part) {
    value += (target - value) * part;
}

} // namespace

std::optional<std::int64_t> Usage::left() const {
    std::optional<std::int64_t> bytes;
    if (max) {
        bytes = std::max<std::int64_t>(*max - month, 0);
    }
    if (maxDaily) {
        // A boost can't make the largest limit overflow.
        std::int64_t const limit = std::min(*maxDaily, INT64_MAX - boostDaily) + boostDaily;
        std::int64_t const today = std::max<std::int64_t>(limit - day, 0);
        bytes = std::min(bytes.value_or(today), today);
    }
    return bytes;
}

// A month has thirty days. Of the last thirty days one leaves, which is taken to be like the others.
void Usage::beginDay(int dayOfMonth) {
    day = 0;
    boostDaily = 0;
    if (resetDay == 0) {
        month -= month / 30;
    } else if (dayOfMonth == std::clamp<std::int64_t>(resetDay, 1, 30)) {
        month = 0;
    }
}

Line::Line(Character const& character, std::uint64_t seed)
    : temper(character),
      random(seed),
      stateSeconds(temper.secondsUp * random.uniform(0.5, 1.5)),
      latency(temper.latencyMs),
      jitter(temper.latencyMs * temper.jitter / 2),
      lossRatio(temper.loss) {}

// Says whether the line has dropped out in this step.
bool Line::dropOut() {
    if (temper.secondsUp == 0 || (stateSeconds -= stepSeconds) > 0) {
        return false;
    }
    switch (now) {
    case State::connected:
        now = State::disconnected;
        stateSeconds = random.uniform(8, 40);
        return true;
    case State::disconnected:
        now = State::connecting;
        stateSeconds = random.uniform(1.5, 4);
        return false;
    case State::connecting:
        now = State::connected;
        stateSeconds = temper.secondsUp * random.uniform(0.5, 1.5);
        currentQuality = 0.3;
    }
    return false;
}

// Says whether a lull has begun in this step.
bool Line::changePace() {
    if (temper.lullQuality == 1 ||
        !random.chance(stepSeconds / (isLull ? temper.lullSeconds : temper.burstSeconds))) {
        return false;
    }
    return isLull = !isLull;
}

Line::Mishap Line::advance() {
    bool const hasDropped = dropOut();
    bool const hasSlowed = changePace();
    if (now != State::connected) {
        load = 0;
        return hasDropped ? Mishap::dropped : Mishap::none;
    }
    approach(currentQuality, isLull ? temper.lullQuality : 1, 0.03);
    currentQuality = std::clamp(currentQuality + random.around0(temper.wander * 0.1), 0.02, 1.0);

    double const weakness = 1 - currentQuality;
    double const queue = load * load * 0.5;
    double const base = temper.latencyMs * (1 + 0.6 * weakness + queue);
    approach(latency, base * (1 + random.around0(temper.jitter * 2)), 0.2);
    approach(jitter, temper.latencyMs * temper.jitter * random.uniform(0.2, 0.8) * (1 + weakness), 0.05);

    bool const isLossy = random.chance(temper.loss * stepSeconds);
    spike = isLossy ? random.uniform(0.04, 0.1) : spike * 0.95;
    approach(lossRatio, temper.loss * (1 + 3 * weakness) * random.uniform(0, 2) + spike, 0.1);
    return isLossy ? Mishap::lossy : hasSlowed ? Mishap::slowed : Mishap::none;
}

double Line::usable(double mbps) const {
    if (now != State::connected || usage.priority == never) {
        return 0;
    }
    double rate = mbps * currentQuality;
    if (usage.rateLimit) {
        rate = std::min(rate, static_cast<double>(*usage.rateLimit) / 1e6);
    }
    if (usage.left() == 0) {
        rate = std::min(rate, static_cast<double>(usage.overlimitRate) / 1e6);
    }
    return std::max(rate, 0.0);
}

Bytes Line::carry(double downMbps, double upMbps) {
    Bytes bytes{static_cast<std::int64_t>(downMbps * bytesPerMbps),
                static_cast<std::int64_t>(upMbps * bytesPerMbps)};
    std::optional<std::int64_t> const left = usage.left();
    if (left && usage.overlimitRate <= 0) {
        bytes.received = std::min(bytes.received, *left);
        bytes.sent = std::min(bytes.sent, *left - bytes.received);
    }
    usage.month += bytes.received + bytes.sent;
    usage.day += bytes.received + bytes.sent;
    load = std::max(downMbps / temper.downMbps, upMbps / temper.upMbps) / currentQuality;
    return bytes;
}

} // namespace kelvarissim
