#include "behavior/operations/tracking/FrameTracking.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

constexpr double BlurSigma = 3.0;
/// Pixels the Gaussian reaches from its centre at sigma 3 (9 for 8-bit images, 12 for
/// others), with room to spare.
constexpr int Reach = 16;
/// Bands are not cut thinner than this, so that their margins stay a small extra.
constexpr int MinimumBandRows = 96;

void gaussian(const cv::Mat& input, cv::Mat& output)
{
    // A zero kernel size lets OpenCV derive it from sigma.
    cv::GaussianBlur(input, output, cv::Size(), BlurSigma, BlurSigma, cv::BORDER_REFLECT_101);
}

cv::Rect grown(const cv::Rect& box, const cv::Rect& whole)
{
    return cv::Rect(box.x - Reach, box.y - Reach, box.width + 2 * Reach, box.height + 2 * Reach) & whole;
}

/// The Gaussian of `region` of `input` into `output` (of the region's size), each pixel
/// exactly as one blur of the whole input gives it. The blur is the costliest step, so
/// a large region is cut into horizontal bands worked on OpenCV's threads, using the
/// cores the decoding leaves free. A band (or a region smaller than the frame) is
/// blurred as an image of its own with margins that hold the true neighbours of its
/// edge pixels, and the margins' results are dropped. It is blurred as a copy, not a
/// view: OpenCV blurs a view of a larger image by another method, whose results may
/// differ in the last bit.
void blurRegion(const cv::Mat& input, const cv::Rect& region, cv::Mat& output)
{
    const cv::Rect whole(0, 0, input.cols, input.rows);
    const int bands = std::clamp(region.height / MinimumBandRows, 1, cv::getNumThreads());
    if (region == whole && bands == 1) {
        gaussian(input, output);
        return;
    }
    output.create(region.size(), input.type());
    cv::parallel_for_(cv::Range(0, bands), [&](const cv::Range& range) {
        cv::Mat blurred;
        for (int band = range.start; band < range.end; ++band) {
            const int top = region.y + region.height * band / bands;
            const int bottom = region.y + region.height * (band + 1) / bands;
            const cv::Rect inner(region.x, top, region.width, bottom - top);
            const cv::Rect outer = grown(inner, whole);
            gaussian(input(outer).clone(), blurred);
            blurred(inner - outer.tl()).copyTo(output(inner - region.tl()));
        }
    });
}

/// The bounding rectangle of the pixels of an 8-bit mask that are not 0; empty when there
/// are none. cv::boundingRect() visits a mask pixel by pixel; this passes over empty rows
/// whole, which on a video frame is most of them.
cv::Rect nonZeroBounds(const cv::Mat& mask)
{
    int top = 0;
    while (top < mask.rows && cv::countNonZero(mask.row(top)) == 0)
        ++top;
    if (top == mask.rows)
        return {};
    int bottom = mask.rows - 1;
    while (cv::countNonZero(mask.row(bottom)) == 0)
        --bottom;
    cv::Mat columns;
    cv::reduce(mask.rowRange(top, bottom + 1), columns, 0, cv::REDUCE_MAX);
    const std::uint8_t* column = columns.ptr<std::uint8_t>();
    int left = 0;
    while (column[left] == 0)
        ++left;
    int right = columns.cols - 1;
    while (column[right] == 0)
        --right;
    return {left, top, right - left + 1, bottom - top + 1};
}

/// Where a grey test of [low, high] on the blurred levels can keep pixels: the blur of a
/// window lies between its lowest and its highest level, so a kept pixel lies within the
/// Gaussian's reach of a level up to `high` and of a level from `low`. Everywhere else the
/// mask is 0 without blurring, which on a light floor leaves only the animal's
/// surroundings to blur. Empty when no pixel can pass.
cv::Rect reachable(const cv::Mat& levels, int low, int high, cv::Mat& work)
{
    const cv::Rect whole(0, 0, levels.cols, levels.rows);
    const double top = levels.depth() == CV_8U ? 255 : 65535;
    cv::Rect region = whole;
    if (high < top) {
        cv::inRange(levels, 0, high, work);
        region &= grown(nonZeroBounds(work), whole);
    }
    if (low > 0 && !region.empty()) {
        cv::inRange(levels, low, top, work);
        region &= grown(nonZeroBounds(work), whole);
    }
    return region;
}

double scaled(double percent)
{
    return percent * 255 / 100;
}

} // namespace

bool thresholdMask(const cv::Mat& frame, const ThresholdSettings& settings, cv::Mat& mask, cv::Mat& work)
{
    if (!settings.value) {
        // The frame as it is: the contour search takes one 8-bit channel, so a pixel
        // counts when any of its channels is not 0.
        cv::inRange(frame, cv::Scalar::all(0), cv::Scalar::all(0), mask);
        cv::bitwise_not(mask, mask);
        return true;
    }
    const cv::Mat* input = &frame;
    cv::Mat threeChannels;
    if (frame.channels() == 4) {
        cv::cvtColor(frame, threeChannels, cv::COLOR_BGRA2BGR);
        input = &threeChannels;
    }
    const ThresholdRange& value = *settings.value;
    if (!settings.colourMode()) {
        const cv::Mat* levels = input;
        if (input->channels() != 1) {
            cv::cvtColor(*input, mask, cv::COLOR_BGR2GRAY);
            levels = &mask;
        }
        const int low = static_cast<int>(scaled(value.low));
        const int high = static_cast<int>(scaled(value.high));
        const cv::Rect region = reachable(*levels, low, high, work);
        if (!region.empty())
            blurRegion(*levels, region, work);
        // The levels may lie in `mask`: it is cleared only once they are blurred.
        mask.create(levels->size(), CV_8UC1);
        mask.setTo(0);
        if (!region.empty()) {
            cv::Mat kept = mask(region);
            cv::inRange(work, low, high, kept);
        }
        return true;
    }
    if (input->depth() != CV_8U) {
        mask.release();
        return false;
    }
    if (input->channels() == 1) {
        cv::cvtColor(*input, threeChannels, cv::COLOR_GRAY2RGB);
        input = &threeChannels;
    }
    cv::cvtColor(*input, mask, cv::COLOR_RGB2HSV);
    blurRegion(mask, cv::Rect(0, 0, mask.cols, mask.rows), work);
    const ThresholdRange& hue = *settings.hue;
    const ThresholdRange& saturation = *settings.saturation;
    cv::inRange(work, cv::Scalar(hue.low, scaled(saturation.low), scaled(value.low)),
                cv::Scalar(hue.high, scaled(saturation.high), scaled(value.high)), mask);
    return true;
}

int chooseContour(std::span<const double> areas)
{
    int chosen = -1;
    int chosenArea = 0;
    for (std::size_t i = 0; i < areas.size(); ++i) {
        if (areas[i] > chosenArea) {
            chosen = static_cast<int>(i);
            chosenArea = static_cast<int>(areas[i]);
        }
    }
    return chosen;
}

FramePosition findAnimal(const cv::Mat& mask, std::vector<std::vector<cv::Point>>& contours)
{
    std::vector<cv::Vec4i> hierarchy;
    cv::findContours(mask, contours, hierarchy, cv::RETR_TREE, cv::CHAIN_APPROX_SIMPLE);
    std::vector<double> areas(contours.size());
    std::transform(contours.begin(), contours.end(), areas.begin(),
                   [](const std::vector<cv::Point>& contour) { return cv::contourArea(contour); });
    FramePosition found;
    found.contour = chooseContour(areas);
    if (found.contour < 0)
        return found;
    // A chosen contour has an area above 0, so m00 is not 0.
    const cv::Moments moments = cv::moments(contours[static_cast<std::size_t>(found.contour)]);
    found.position = {static_cast<int>(moments.m10 / moments.m00),
                      static_cast<int>(moments.m01 / moments.m00)};
    return found;
}

int estimateAnimalSize(const std::vector<cv::Point>& contour)
{
    const cv::Size2f box = cv::minAreaRect(contour).size;
    return std::max(1, static_cast<int>(std::lround(std::max(box.width, box.height))));
}

} // namespace zarvi
