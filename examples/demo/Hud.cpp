#include "Hud.h"

#include <algorithm>

namespace demo {

std::string Hud::shortName(const std::string& productId) {
    const auto dot = productId.find_last_of('.');
    return dot == std::string::npos || dot + 1 == productId.size() ? productId : productId.substr(dot + 1);
}

Hud::Hud(const std::vector<std::string>& productIds) {
    for (const auto& id : productIds) {
        items_.push_back({Action::buy, id, "Mua " + shortName(id), 0, 0, 0, 0});
    }
    items_.push_back({Action::restore, "", "Khôi phục giao dịch", 0, 0, 0, 0});
    items_.push_back({Action::userInfo, "", "Thông tin tài khoản", 0, 0, 0, 0});
    items_.push_back({Action::logout, "", "Đăng xuất", 0, 0, 0, 0});
}

void Hud::layout(double sceneWidth) {
    const double x = std::max(margin, sceneWidth - margin - buttonWidth);
    double y = margin;
    for (auto& item : items_) {
        item.x = x;
        item.y = y;
        item.width = buttonWidth;
        item.height = buttonHeight;
        y += buttonHeight + spacing;
    }
}

std::optional<Hud::Item> Hud::itemAt(double x, double y) const {
    for (const auto& item : items_) {
        if (x >= item.x && x < item.x + item.width && y >= item.y && y < item.y + item.height) {
            return item;
        }
    }
    return std::nullopt;
}

std::optional<Hud::Item> Hud::buyItem(const std::string& productId) const {
    for (const auto& item : items_) {
        if (item.action == Action::buy && item.productId == productId) {
            return item;
        }
    }
    return std::nullopt;
}

std::optional<Hud::Item> Hud::item(Action action) const {
    for (const auto& item : items_) {
        if (item.action == action) {
            return item;
        }
    }
    return std::nullopt;
}

void Hud::setPrice(const std::string& productId, const std::string& price) {
    for (auto& item : items_) {
        if (item.action == Action::buy && item.productId == productId) {
            item.label = "Mua " + shortName(productId) + " · " + price;
        }
    }
}

}  // namespace demo
