// SPDX-License-Identifier: Apache-2.0
// Real video for the background-model tests: the first frames of OpenCV's
// sample street scene, decoded once per process.
#pragma once

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <vector>

namespace zt::bg {

// The first `count` colour frames at half size (384 x 288), or none when
// the sample is missing.
inline const std::vector<cv::Mat>& street_frames(std::size_t count = 120) {
    static std::vector<cv::Mat> frames;
    if (frames.size() < count) {
        frames.clear();
        cv::VideoCapture cap("/usr/share/doc/opencv-doc/examples/data/vtest.avi");
        cv::Mat f;
        while (frames.size() < count && cap.read(f)) {
            cv::Mat half;
            cv::resize(f, half, cv::Size(f.cols / 2, f.rows / 2), 0, 0, cv::INTER_AREA);
            frames.push_back(half);
        }
    }
    return frames;
}

// Share of pixels where two masks agree on foreground (non-zero) or not.
inline double agreement(const cv::Mat& a, const cv::Mat& b) {
    cv::Mat fa = a != 0, fb = b != 0, diff;
    cv::compare(fa, fb, diff, cv::CMP_NE);
    return 1.0 - double(cv::countNonZero(diff)) / double(a.total());
}

}  // namespace zt::bg
