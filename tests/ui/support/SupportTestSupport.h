#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/jpeg/JpegImageCodec.h"
#include "support/LoopbackServer.h"
#include "ui/support/SupportReportVC.h"

namespace ovix::test {

/// Holds each upload answer until the test lets that picture's answer go, so a test chooses the
/// order in which uploads complete.
class AnswerGate {
  public:
    void release(int picture) {
        std::lock_guard lock(mutex_);
        released_.insert(picture);
        changed_.notify_all();
    }
    void releaseAll() {
        std::lock_guard lock(mutex_);
        all_ = true;
        changed_.notify_all();
    }
    /// Bounded, so a broken test ends instead of hanging the server.
    void await(int picture) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(10),
                          [&] { return all_ || released_.count(picture) > 0; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<int> released_;
    bool all_ = false;
};

/// The support form presented full screen in a 390 x 844 window over a plain root screen. The graph
/// host is the process's loopback server reached with the real HTTP client; the image picker is the
/// headless platform's scripted one.
///
/// Picture `n` is a solid 8 x 8 square whose red level encodes `n`; the upload route decodes the JPEG
/// it receives to learn `n`, waits for the gate, and answers with `pictureUrl(n)`, where the server
/// serves the picture back as JPEG.
class SupportFormTest : public ::testing::Test {
  protected:
    static constexpr const char* uploadPath = "/inside/image/api/v2.0/upload";

    SupportFormTest() {
        server.reset();
        testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(server.baseUrl());
        h = testing::HeadlessPlatform::create(options);
        h.platform->http = std::make_shared<platform::CurlHttpClient>();
        h.install();
        for (int n = 0; n < 12; ++n) {
            server.on("/img/" + std::to_string(n) + ".jpg",
                      LoopbackServer::Reply{200, *codec.encodeJpeg(picture(n), 0.9), "image/jpeg"});
        }
        // The route outlives nothing of the fixture but the gate it shares.
        server.on(uploadPath, [gate = gate, base = server.baseUrl()](const LoopbackServer::Request& request) {
            const int n = pictureIn(request.body);
            gate->await(n);
            const std::string url = base + "/img/" + std::to_string(n) + ".jpg";
            return LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":")" + url + R"("}})"};
        });
        root = kit::ViewController::create();
        form = SupportReportVC::create();
        root->view()->setBackgroundColor(kit::Color::black());
        window()->setRootViewController(root);
        root->present(form, false);
        h.mainQueue->runUntilIdle();
        window()->layoutIfNeeded();
    }

    ~SupportFormTest() override { gate->releaseAll(); }

    std::shared_ptr<kit::Window> window() const { return h.application->windows().front(); }
    SupportReportView& formView() const { return *form->reportView(); }

    static platform::RgbaImage picture(int n) {
        platform::RgbaImage image{8, 8, {}};
        for (int i = 0; i < 64; ++i) {
            image.pixels.insert(image.pixels.end(), {static_cast<std::uint8_t>(10 + 20 * n), 90, 160, 255});
        }
        return image;
    }
    std::string pictureUrl(int n) const { return server.url("/img/" + std::to_string(n) + ".jpg"); }

    /// The picture number inside an upload body; -1 when it holds no readable JPEG.
    static int pictureIn(const std::string& body) {
        const platform::JpegImageCodec codec;
        const std::string head = "Content-Type: image/jpeg\r\n\r\n";
        const auto start = body.find(head);
        const auto end = body.rfind("\r\n--");
        if (start == std::string::npos || end == std::string::npos || end < start) {
            return -1;
        }
        auto image =
            codec.decode(std::string_view(body).substr(start + head.size(), end - start - head.size()));
        return image ? static_cast<int>(std::lround((image->pixels[0] - 10) / 20.0)) : -1;
    }

    /// Opens the picker through the attachment section, as the player does, and picks `picks`.
    void pickThroughForm(std::vector<testing::ScriptedPick> picks) {
        formView().handleAttachTap();
        ASSERT_TRUE(h.imagePicker->pick(std::move(picks)));
        h.mainQueue->runUntilIdle();
    }
    static std::vector<testing::ScriptedPick> pictures(int first, int count) {
        std::vector<testing::ScriptedPick> picks;
        for (int n = first; n < first + count; ++n) {
            picks.push_back(testing::ScriptedPick::picture(picture(n)));
        }
        return picks;
    }
    /// Lets `order`'s answers go one by one, each after the previous one has reached the form.
    void answerInOrder(const std::vector<int>& order) {
        for (int n : order) {
            const auto before = form->uploadedImageUrls().size();
            gate->release(n);
            ASSERT_TRUE(h.mainQueue->runUntil([&] { return form->uploadedImageUrls().size() > before; }))
                << "picture " << n << " never arrived";
        }
    }
    std::vector<std::shared_ptr<kit::ImageView>> thumbnails() const {
        std::vector<std::shared_ptr<kit::ImageView>> out;
        for (const auto& view : formView().attachImages()->arrangedSubviews()) {
            out.push_back(std::dynamic_pointer_cast<kit::ImageView>(view));
        }
        return out;
    }
    void tapCentre(const kit::View& view) {
        window()->layoutIfNeeded();
        const kit::Rect r = view.convertTo(view.bounds(), nullptr);
        window()->tap({r.midX(), r.midY()});
    }

    LoopbackServer& server = LoopbackServer::shared();
    platform::JpegImageCodec codec;
    std::shared_ptr<AnswerGate> gate = std::make_shared<AnswerGate>();
    testing::HeadlessPlatform h;
    std::shared_ptr<kit::ViewController> root;
    std::shared_ptr<SupportReportVC> form;
};

}  // namespace ovix::test
