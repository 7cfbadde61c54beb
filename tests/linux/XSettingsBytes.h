#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

// Settings as a manager writes them.
class XSettingsBytes {
 public:
    XSettingsBytes& integer(std::string name, std::uint32_t value) {
        return setting({0, std::move(name), value, {}});
    }
    XSettingsBytes& string(std::string name, const std::string& value) {
        return setting({1, std::move(name), static_cast<std::uint32_t>(value.size()), padded(value)});
    }
    XSettingsBytes& color(std::string name) {
        return setting({2, std::move(name), std::nullopt, std::string(8, '\xFF')});
    }
    struct Setting {
        char type;
        std::string name;
        // The value: a number first, if there is one.
        std::optional<std::uint32_t> number;
        std::string bytes;
    };
    XSettingsBytes& setting(Setting setting) {
        settings_.push_back(std::move(setting));
        return *this;
    }

    enum class Order : char { littleEndian, bigEndian };
    std::string whole(Order order = Order::littleEndian) const {
        return withCount(static_cast<std::uint32_t>(settings_.size()), order);
    }
    // Saying that there are so many.
    std::string withCount(std::uint32_t count, Order order = Order::littleEndian) const {
        std::string bytes{static_cast<char>(order), '\0', '\0', '\0'};
        bytes += number(8, 4, order) + number(count, 4, order);
        for (const Setting& each : settings_) {
            bytes += std::string{each.type, '\0'} +
                     number(static_cast<std::uint32_t>(each.name.size()), 2, order) + padded(each.name) +
                     number(7, 4, order);
            if (each.number) bytes += number(*each.number, 4, order);
            bytes += each.bytes;
        }
        return bytes;
    }

 private:
    static std::string number(std::uint32_t value, unsigned size, Order order) {
        std::string bytes;
        for (unsigned i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * (order == Order::bigEndian ? size - 1 - i : i));
        return bytes;
    }
    static std::string padded(const std::string& text) {
        return text + std::string((4 - text.size() % 4) % 4, '\0');
    }

    std::vector<Setting> settings_;
};

}  // namespace norvane
