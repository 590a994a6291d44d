#ifndef ISPCTL_IMAGE_WATCH_H
#define ISPCTL_IMAGE_WATCH_H

namespace ispctl {

/// Detects which libraries this process loads during the lifetime of the object. One object at a
/// time.
///
/// The ScalerIsp library does not report whether it has called a plug-in, but to call one it must
/// load one. Images that the C library loads for its own use, such as character set conversions,
/// are not counted; in case of doubt an image counts as a plug-in.
class ImageWatch {
  public:
    ImageWatch();
    /// RETURNS false only if no plug-in was loaded since construction, not even temporarily.
    bool MayHaveLoadedPlugin() const;

  private:
    unsigned long long m_loads;
    bool m_pluginFromTheStart;
};

} // namespace ispctl

#endif
