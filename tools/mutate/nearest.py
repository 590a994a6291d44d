"""Which test programs are nearest to a source: they run first, and catch most faults within seconds."""

# The first prefix that fits counts.
NEAREST = (
    ("scaler_isp/abi/", ("unit_abi", "unit_args")),
    ("scaler_isp/args/", ("unit_args", "unit_entry")),
    ("scaler_isp/common/script/", ("unit_common_script",)),
    ("scaler_isp/common/", ("unit_common", "unit_args", "unit_settings")),
    ("scaler_isp/entry/", ("unit_entry",)),
    ("scaler_isp/plugins/", ("unit_plugins", "unit_entry")),
    ("scaler_isp/settings/", ("unit_settings",)),
    ("scaler_isp/sign/", ("unit_sign", "unit_entry")),
    ("ispctl/check/", ("ispctl_check_plugin",)),
    ("ispctl/chip/", ("ispctl_station", "ispctl_doctor")),
    ("ispctl/comm/", ("ispctl_script_edid",)),
    ("ispctl/doctor/", ("ispctl_doctor",)),
    ("ispctl/edid/", ("ispctl_edid", "ispctl_script_edid")),
    ("ispctl/explain/", ("ispctl_explain",)),
    ("ispctl/line/", ("ispctl_line", "ispctl_line_engine", "ispctl_virtual")),
    ("ispctl/log/", ("ispctl_station",)),
    ("ispctl/script/", ("ispctl_script", "ispctl_script_edid")),
    ("ispctl/station/", ("ispctl_station", "ispctl_station_run")),
    ("ispctl/", ("ispctl_parts", "ispctl_process", "ispctl_virtual")),
    ("simulator/bus/", ("virtual_bus", "ispctl_virtual")),
    ("simulator/common/", ("virtual_text", "virtual_isp_plugin", "virtual_bus")),
    ("simulator/device/", ("virtual_text", "virtual_isp_plugin", "virtual_bus")),
    ("simulator/sign/", ("virtual_sign_plugin",)),
    ("simulator/", ("virtual_isp_plugin", "virtual_bus", "ispctl_virtual")),
)


def nearest_programs(path):
    return next((programs for prefix, programs in NEAREST if path.startswith(prefix)), ())
