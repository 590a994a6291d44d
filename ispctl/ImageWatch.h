#ifndef ISPCTL_IMAGE_WATCH_H
#define ISPCTL_IMAGE_WATCH_H

namespace ispctl {

/// Watches which libraries this process loads while it lives. One at a time.
///
/// The ScalerIsp library does not tell whether it has called a plug-in, but it cannot without
/// having loaded one. What the C library loads for its own purposes, such as conversions of text,
/// is no plug-in; any doubt counts as one.
class ImageWatch {
  public:
    ImageWatch();
    /// RETURNS false where it is certain that no plug-in was loaded since, even for a moment.
    bool MayHaveLoadedPlugin() const;

  private:
    unsigned long long m_loads;
    bool m_pluginFromTheStart;
};

} // namespace ispctl

#endif
