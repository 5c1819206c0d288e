#pragma once

#include <optional>
#include <string>
#include <vector>

namespace demo {

/// The game's own buttons, drawn by the game in a column at the top right of its scene: one "buy"
/// per product of the sandbox catalog, then restore, user info and log out. The HUD only lays them
/// out and says which one a click hit; the game runs the action. Main thread only.
class Hud {
  public:
    enum class Action { buy, restore, userInfo, logout };
    struct Item {
        Action action;
        std::string productId;  ///< the product of a "buy" button; empty otherwise
        std::string label;
        double x = 0, y = 0, width = 0, height = 0;  ///< in scene points, set by `layout`
    };

    static constexpr double buttonWidth = 220;
    static constexpr double buttonHeight = 34;
    static constexpr double spacing = 8;
    static constexpr double margin = 16;

    explicit Hud(const std::vector<std::string>& productIds);

    /// Places the column against the right edge of a `sceneWidth` wide scene. A scene narrower than
    /// a button and its margins keeps the buttons at the left margin rather than off screen.
    void layout(double sceneWidth);
    /// The button under (x, y), if any.
    std::optional<Item> itemAt(double x, double y) const;
    /// The "buy" button of `productId`, if the catalog has it.
    std::optional<Item> buyItem(const std::string& productId) const;
    /// The first button of `action`.
    std::optional<Item> item(Action action) const;
    /// Updates a buy button's text once the store told the product's price.
    void setPrice(const std::string& productId, const std::string& price);
    /// What a buy button calls a product: the id's last dotted part ("com.game.gems100" → "gems100").
    static std::string shortName(const std::string& productId);
    const std::vector<Item>& items() const { return items_; }

  private:
    std::vector<Item> items_;
};

}  // namespace demo
