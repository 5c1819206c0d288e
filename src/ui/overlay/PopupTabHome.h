#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "ovix/kit/CollectionView.h"
#include "ovix/kit/CollectionViewDataSource.h"
#include "ovix/kit/CollectionViewDelegate.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The overlay's home tab: a "Menu" title over a grid of four shortcut tiles ("Tài khoản",
/// "Facebook", "Group", "Chat Admin"). Only the account tile acts (`onSelectAccount`); the others
/// print "Selected tab: <title>" on the console.
///
/// Tiles are 90 high; as many 125-point-or-wider columns as fit, 8 apart inside 8-point insets. The
/// column count is not clamped: a grid narrower than 125 points has no column and a non-finite tile
/// width (the panel is never that narrow). A tile image missing from the bundle leaves its icon empty.
///
/// It is its grid's data source and delegate (held weakly by the grid). Main thread only.
class PopupTabHome : public kit::View,
                     public kit::CollectionViewDataSource,
                     public kit::CollectionViewDelegate {
  public:
    struct Tab {
        const char* icon;
        const char* title;
    };
    static constexpr std::array<Tab, 4> tabs{{
        {"user", "Tài khoản"},
        {"facebook", "Facebook"},
        {"ic_sdk_float", "Group"},
        {"messenger", "Chat Admin"},
    }};
    static constexpr const char* accountTitle = "Tài khoản";
    static constexpr double spacing = 8.0;
    static constexpr double minWidth = 125.0;
    static constexpr double tileHeight = 90;
    static constexpr double titleHeight = 60;

    static std::shared_ptr<PopupTabHome> create(kit::Rect frame = {});
    explicit PopupTabHome(kit::Rect frame);

    /// Called when the "Tài khoản" tile is tapped.
    std::function<void()> onSelectAccount;

    const std::shared_ptr<kit::CollectionView>& collectionView() const { return collectionView_; }
    const std::shared_ptr<kit::Label>& titleLabel() const { return titleLabel_; }

    /// A tile's size in a grid `width` wide.
    static kit::Size tileSize(double width);

    int numberOfItemsInSection(kit::CollectionView& collectionView, int section) override;
    std::shared_ptr<kit::CollectionViewCell> cellForItemAt(kit::CollectionView& collectionView,
                                                           const kit::IndexPath& indexPath) override;
    std::optional<kit::Size> sizeForItemAt(kit::CollectionView& collectionView,
                                           kit::CollectionViewFlowLayout& layout,
                                           const kit::IndexPath& indexPath) override;
    void didSelectItemAt(kit::CollectionView& collectionView, const kit::IndexPath& indexPath) override;

    std::string className() const override { return "PopupTabHome"; }

  private:
    void setupLayout();

    std::shared_ptr<kit::Label> titleLabel_;
    std::shared_ptr<kit::CollectionView> collectionView_;
};

}  // namespace ovix
