#include "DemoTour.h"

#include <glib.h>

#include <cmath>
#include <cstdio>

#include "ViewFinder.h"
#include "ovix/FloatingButton.h"
#include "ovix/OvixCore.h"
#include "ovix/kit/NavigationController.h"

namespace demo {

namespace {

using Stage = TourRunner::Stage;
using ovix::OvixEvents;

constexpr const char* refusedProduct = "com.ovix.demo.vip";
constexpr const char* allowedProduct = "com.ovix.demo.gems100";
constexpr const char* failedPurchaseTitle = "Giao dịch thất bại";
constexpr const char* signInFormReady =
    "document.readyState === 'complete' && !!document.getElementById('username')";

void printResult(const TourRunner::Result& result) {
    std::printf("tour: %-22s %s (%.1f s)%s%s\n", result.name.c_str(), result.passed ? "PASS" : "FAIL",
                result.seconds, result.detail.empty() ? "" : " — ", result.detail.c_str());
    std::fflush(stdout);
}

}  // namespace

DemoTour::DemoTour(DemoGame& game, std::shared_ptr<FilePicker> picker, std::string outputDirectory,
                   GMainLoop* loop)
    : game_(game),
      picker_(std::move(picker)),
      directory_(std::move(outputDirectory)),
      loop_(loop),
      runner_(
          directory_,
          [this](const std::string& path) { return game_.overlay() && game_.overlay()->writeSnapshot(path); },
          [this](const TourRunner::Result& result) {
              printResult(result);
              if (!result.passed) {
                  std::printf("tour: the SDK's views at the failure:\n%s",
                              ViewFinder::describe(root()).c_str());
              }
          }) {
    addSteps();
}

DemoTour::~DemoTour() {
    if (source_ != 0) {
        g_source_remove(source_);
    }
}

void DemoTour::begin() {
    source_ = g_timeout_add(50, reinterpret_cast<GSourceFunc>(tick), this);
}

int DemoTour::tick(void* data) {
    auto* tour = static_cast<DemoTour*>(data);
    if (!tour->runner_.tick(static_cast<double>(g_get_monotonic_time()) / 1e6)) {
        return G_SOURCE_CONTINUE;
    }
    tour->source_ = 0;
    std::size_t passed = 0;
    for (const auto& result : tour->runner_.results()) {
        passed += result.passed ? 1 : 0;
    }
    std::printf("tour: %zu of %zu steps passed; screenshots in %s\n", passed, tour->runner_.results().size(),
                tour->directory_.c_str());
    std::fflush(stdout);
    g_main_loop_quit(tour->loop_);
    return G_SOURCE_REMOVE;
}

std::shared_ptr<ovix::kit::View> DemoTour::root() const {
    return game_.overlay() ? game_.overlay()->window() : nullptr;
}

std::shared_ptr<ovix::kit::View> DemoTour::find(
    const std::function<bool(const ovix::kit::View&)>& matches) const {
    return ViewFinder::find(root(), matches);
}

std::string DemoTour::screen() const {
    const auto window = game_.overlay() ? game_.overlay()->window() : nullptr;
    auto top = window ? ViewFinder::topController(*window) : nullptr;
    if (auto navigation = std::dynamic_pointer_cast<ovix::kit::NavigationController>(top)) {
        top = navigation->viewControllers().empty() ? nullptr : navigation->viewControllers().back();
    }
    return top ? top->className() : "";
}

std::shared_ptr<ovix::kit::host::WebView> DemoTour::page() const {
    return std::dynamic_pointer_cast<ovix::kit::host::WebView>(find(
        [](const ovix::kit::View& view) { return dynamic_cast<const ovix::kit::host::WebView*>(&view); }));
}

bool DemoTour::pageAnswers(const std::string& script, const ovix::Value& expected) {
    if (pageAnswer_ && pageAnswer_->first == script && pageAnswer_->second == expected) {
        pageAnswer_.reset();  // consumed: a later step asking the same must see a fresh answer
        return true;
    }
    auto web = page();
    if (web && !pageBusy_) {
        pageBusy_ = true;
        web->evaluateJavaScript(script, [this, script](const ovix::Value& value, const auto&) {
            pageBusy_ = false;
            pageAnswer_ = std::make_pair(script, value);
        });
    }
    return false;
}

std::shared_ptr<ovix::kit::View> DemoTour::menuButton(std::size_t index) const {
    const auto sheet = find(ViewFinder::hasClass("SidebarPopup"));
    if (!sheet || sheet->subviews().empty()) {
        return nullptr;
    }
    const auto buttons = ViewFinder::findAll(sheet->subviews().front(), [](const ovix::kit::View& view) {
        return dynamic_cast<const ovix::kit::Button*>(&view) != nullptr;
    });
    return index < buttons.size() ? buttons[index] : nullptr;
}

bool DemoTour::loading() const {
    return find(ViewFinder::hasClass("LoadingView")) != nullptr;
}

bool DemoTour::sheetAtRest() const {
    const auto button = ovix::OvixCore::shared().floatingButton();
    const auto sheet = button ? button->popupView() : nullptr;
    const auto window = sheet ? sheet->window() : nullptr;
    if (!window) {
        return false;
    }
    const auto size = window->bounds().size;
    const auto top = sheet->convertTo(ovix::kit::Point{0, 0}, window.get()).y;
    // The slide's end position is set at once; the overlay keeps redrawing until the slide is over,
    // and a tap during it does not reach the menu.
    return std::abs(top - (size.height - ovix::FloatingButton::sheetHeight(size))) < 0.5 &&
           !game_.overlay()->isRedrawing();
}

void DemoTour::tapHud(Hud::Action action, const std::string& productId) {
    const auto item = action == Hud::Action::buy ? game_.hud().buyItem(productId) : game_.hud().item(action);
    if (item) {
        game_.run(*item);
    } else {
        game_.log().addNote("tour: the HUD has no such button");
    }
}

void DemoTour::addSteps() {
    addLoginSteps();
    addOverlaySteps();
    addStoreSteps();
}

void DemoTour::addLoginSteps() {
    runner_.add({"splash",
                 {{[this] { game_.start(); }, [this] { return screen() == "SplashViewController"; },
                   "the splash screen"}},
                 5,
                 0.2});
    runner_.add(
        {"login-page",
         {{{}, [this] { return screen() == "LoginViewController" && page() != nullptr; }, "the login screen"},
          {{},
           [this] { return pageAnswers(signInFormReady, ovix::Value(true)); },
           "the sign-in form in the page"},
          {{}, [this] { return !loading(); }, "the loading cover gone", true}},
         20,
         0.5});
    const std::string fill =
        "document.getElementById('username').value = 'player1';"
        "document.getElementById('password').value = 'ovix123';"
        "document.getElementById('username').value + '/' + "
        "document.getElementById('password').value.length";
    runner_.add(
        {"login-filled",
         {{{}, [this, fill] { return pageAnswers(fill, ovix::Value("player1/7")); }, "the filled form"}},
         10,
         0.3});
    runner_.add({"game",
                 {{[this] { page()->evaluateJavaScript("document.getElementById('submit').click(); 1", {}); },
                   [this] { return game_.log().count(OvixEvents::LOGIN_SUCCESS) == 1; }, "OvixLoginSuccess"},
                  {{},
                   [this] {
                       return game_.inGame() && ovix::OvixCore::shared().floatingButton() &&
                              ovix::OvixCore::shared().warningButton() && screen() == "ViewController";
                   },
                   "the game with the floating and warning buttons"}},
                 15,
                 1.0});
}

void DemoTour::addOverlaySteps() {
    runner_.add({"overlay-home",
                 {{[] { ViewFinder::tap(ovix::OvixCore::shared().floatingButton()); },
                   [this] { return sheetAtRest() && find(ViewFinder::hasClass("PopupTabHome")) != nullptr; },
                   "the sheet's home tab"}},
                 5,
                 0.8});
    runner_.add(
        {"account-popup",
         {{[this] { ViewFinder::tap(find(ViewFinder::labelShowing("Tài khoản"))); },
           [this] { return find(ViewFinder::hasClass("AccountPopup")) != nullptr; }, "the account popup"},
          {{},
           [this] { return find(ViewFinder::labelShowing("Tên tài khoản")) != nullptr; },
           "the account rows in the popup"}},
         10,
         0.8});
    // The account tile closes the sheet; in landscape the popup's close button is the one at its top.
    runner_.add(
        {"overlay-events",
         {{[this] {
               ViewFinder::tap(ViewFinder::find(find(ViewFinder::hasClass("AccountPopup")),
                                                [](const ovix::kit::View& view) {
                                                    return dynamic_cast<const ovix::kit::Button*>(&view);
                                                }));
           },
           [this] { return find(ViewFinder::hasClass("AccountPopup")) == nullptr; }, "the popup closed"},
          {[] { ViewFinder::tap(ovix::OvixCore::shared().floatingButton()); },
           [this] { return sheetAtRest(); }, "the sheet up again"},
          {[this] { ViewFinder::tap(menuButton(1)); },
           [this] { return find(ViewFinder::hasClass("NewsEventCell")) != nullptr; }, "the feed's rows"}},
         10,
         0.8});
    runner_.add(
        {"overlay-report",
         {{[this] { ViewFinder::tap(menuButton(2)); },
           [this] { return find(ViewFinder::buttonTitled("Báo lỗi")) != nullptr; }, "the report tab"}},
         5,
         0.6});
    runner_.add({"support-form",
                 {{[this] { ViewFinder::tap(find(ViewFinder::buttonTitled("Báo lỗi"))); },
                   [this] { return find(ViewFinder::hasClass("SupportReportView")) != nullptr; },
                   "the support form"}},
                 5,
                 0.8});
    runner_.add({"support-picture",
                 {{[this] {
                       picker_->setFiles({runner_.snapshotPath(3)});  // the game's own screenshot
                       ViewFinder::tap(find(ViewFinder::labelShowing("Gửi ảnh đính kèm")));
                   },
                   [this] { return picker_->presentCount() == 1; }, "the picker"},
                  {{},
                   [this] { return find(ViewFinder::buttonTitled("✕")) != nullptr; },
                   "the uploaded picture's thumbnail"}},
                 15,
                 1.5});
}

void DemoTour::addStoreSteps() {
    runner_.add(
        {"purchase-refused",
         {{[this] { ViewFinder::tap(find(ViewFinder::buttonTitled("Đóng"))); },
           [this] { return find(ViewFinder::hasClass("SupportReportView")) == nullptr; }, "the form closed"},
          {[this] { ViewFinder::tap(menuButton(3)); },
           [this] { return find(ViewFinder::hasClass("SidebarPopup")) == nullptr; }, "the sheet closed"},
          {[this] { tapHud(Hud::Action::buy, refusedProduct); },
           [this] { return game_.log().count(OvixEvents::BILLING_CONNECTED) == 1; }, "OvixBillingConnected"},
          {[this] { tapHud(Hud::Action::buy, refusedProduct); },
           [this] { return find(ViewFinder::labelShowing(failedPurchaseTitle)) != nullptr; },
           "the alert \"Giao dịch thất bại\""}},
         15,
         0.8});
    runner_.add(
        {"purchase-made",
         {{[this] { ViewFinder::tap(find(ViewFinder::buttonTitled("OK"))); },
           [this] { return find(ViewFinder::labelShowing(failedPurchaseTitle)) == nullptr; },
           "the alert closed"},
          {[this] { tapHud(Hud::Action::buy, allowedProduct); },
           [this] { return game_.log().count(OvixEvents::BILLING_CONNECTED) == 2; }, "OvixBillingConnected"},
          {[this] { tapHud(Hud::Action::buy, allowedProduct); },
           [this] { return game_.log().count(OvixEvents::PURCHASE_UPDATED) == 1; }, "OvixPurchaseUpdated"}},
         15,
         0.5});
    runner_.add({"restore",
                 {{[this] { tapHud(Hud::Action::restore); },
                   [this] { return game_.log().count(OvixEvents::PURCHASES_RESTORED) >= 1; },
                   "OvixPurchaseRestored"}},
                 10,
                 0.5});
    runner_.add(
        {"logout",
         {{[this] { tapHud(Hud::Action::logout); },
           [this] { return game_.log().count(OvixEvents::LOGOUT_SUCCESS) == 1; }, "OvixLogoutSuccess"},
          {{},
           [this] { return screen() == "LoginViewController" && !ovix::OvixCore::shared().floatingButton(); },
           "the login screen back"},
          {{},
           [this] { return pageAnswers(signInFormReady, ovix::Value(true)); },
           "the sign-in form in the page"},
          {{}, [this] { return !loading(); }, "the loading cover gone", true}},
         15,
         1.0});
}

}  // namespace demo
