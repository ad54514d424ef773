#include "behavior/operations/tracking/FrameTracking.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

constexpr double BlurSigma = 3.0;

void blur(const cv::Mat& input, cv::Mat& output)
{
    // A zero kernel size lets OpenCV derive it from sigma.
    cv::GaussianBlur(input, output, cv::Size(), BlurSigma, BlurSigma, cv::BORDER_REFLECT_101);
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
        if (input->channels() == 1)
            blur(*input, work);
        else {
            cv::cvtColor(*input, mask, cv::COLOR_BGR2GRAY);
            blur(mask, work);
        }
        cv::inRange(work, static_cast<int>(scaled(value.low)), static_cast<int>(scaled(value.high)), mask);
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
    blur(mask, work);
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
