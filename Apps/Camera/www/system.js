// The views of recordings, network and system.
"use strict";

const recordsView = {
  async show() {
    const days = itemsOf(await call("SearchRecordDate"), "dateList").map(item => item.textContent.trim());
    const before = byId("record-day").value;
    byId("record-day").replaceChildren(...days.reverse().map(day => make("option", {value: day}, day)));
    if (days.includes(before)) {
      byId("record-day").value = before;
    }
    await recordsView.showDay();
  },

  async showDay() {
    const day = byId("record-day").value;
    if (!day) {
      byId("record-rows").replaceChildren(tableRow("Nothing has been recorded."));
      return;
    }
    const body = nest({"search/starttime": day + " 00:00:00", "search/endtime": day + " 23:59:59"});
    const items = itemsOf(await call("SearchByTime/1", configDocument(body)), "timesectionList");
    byId("record-rows").replaceChildren(...items.map(item => {
      const [date, time] = textOf(item, "starttime").split(" ");
      const seconds = Number(textOf(item, "seconds"));
      const plain = (text, separator) => text.split(separator).map(Number).join(separator);
      const address = rtspAddress(`/1?date=${plain(date, "-")}&time=${plain(time, ":")}&timelen=${seconds}`);
      return tableRow(time, recordsView.length(seconds), ...addressCells(address));
    }));
  },

  length(seconds) {
    const parts = [Math.floor(seconds / 3600), Math.floor(seconds / 60) % 60, seconds % 60];
    return parts.map(part => String(part).padStart(2, "0")).join(":");
  },
};
byId("record-day").onchange = () => act(recordsView.showDay);
byId("record-refresh").onclick = () => act(recordsView.show);

const NETWORK_FORMS = [
  settingsForm({form: byId("tcpip-form"), get: "GetNetBasicConfig", set: "SetNetBasicConfig", fields: [
    {label: "Address comes from", path: "tcpIp/ipSettingMode"},
    {label: "Address", path: "tcpIp/staticIp"},
    {label: "Gateway", path: "tcpIp/staticIpRoute"},
    {label: "Network mask", path: "tcpIp/staticIpMask"},
    {label: "Name servers from DHCP", path: "tcpIp/dnsFromDhcpSwitch"},
    {label: "First name server", path: "tcpIp/dnsServer1"},
    {label: "Second name server", path: "tcpIp/dnsServer2"},
  ]}),
  settingsForm({form: byId("port-form"), get: "GetPortConfig", set: values => networkView.savePorts(values), fields: [
    {label: "HTTP", path: "port/httpPort"},
    {label: "Device", path: "port/netPort"},
    {label: "RTSP", path: "port/rtspPort"},
  ]}),
  settingsForm({form: byId("pppoe-form"), get: "GetNetPppoeConfig", set: "SetNetPppoeConfig", fields: [
    {label: "Dial in", path: "pppoe/switch"},
    {label: "User name", path: "pppoe/userName"},
    {label: "Password", path: "pppoe/password", password: true},
  ]}),
  settingsForm({form: byId("ddns-form"), get: "GetDdnsConfig", set: "SetDdnsConfig", fields: [
    {label: "Report the address", path: "ddns/switch"},
    {label: "Service", path: "ddns/servertype"},
    {label: "User name", path: "ddns/userName"},
    {label: "Password", path: "ddns/password", password: true},
    {label: "Domain name", path: "ddns/domainName"},
    {label: "Server", path: "ddns/serverName"},
  ]}),
];

const networkView = {
  async show() {
    for (const load of NETWORK_FORMS) {
      await load();
    }
  },

  // The page goes with the camera to its new port.
  async savePorts(values) {
    await call("SetPortConfig", configDocument(nest(values)));
    rtsp.port = values["port/rtspPort"];
    if (values["port/httpPort"] !== (location.port || "80")) {
      setTimeout(() => location.assign("http://" + location.hostname + ":" + values["port/httpPort"] + "/"), 1500);
    }
  },
};

const DEVICE_ROWS = [
  ["Model", "model"], ["Brand", "brand"], ["Description", "deviceDescription"], ["Software version", "softwareVersion"],
  ["Software date", "softwareBuildDate"], ["Kernel version", "kernelVersion"], ["Hardware version", "hardwareVersion"],
  ["MAC address", "mac"], ["Audio inputs", "audioInCount"], ["Audio outputs", "audioOutCount"],
  ["Alarm inputs", "alarmInCount"], ["Alarm outputs", "alarmOutCount"], ["Built-in PTZ", "integratedPtz"],
  ["PTZ over RS485", "supportRS485Ptz"], ["SD card", "supportSDCard"],
];

const timeForm = settingsForm({
  form: byId("time-form"), get: "GetDateAndTime", set: "SetDateAndTime", fields: [
    {label: "Time zone", path: "time/timezoneInfo/timeZone"},
    {label: "Daylight saving", path: "time/timezoneInfo/daylightSwitch"},
    {label: "Time comes from", path: "time/synchronizeInfo/type"},
    {label: "NTP server", path: "time/synchronizeInfo/ntpServer"},
  ],
});

const systemView = {
  async show() {
    systemView.showDevice(await call("GetDeviceInfo"));
    await timeForm();
  },

  showDevice(info) {
    byId("device-rows").replaceChildren(...DEVICE_ROWS.map(([title, name]) => {
      const value = textOf(info, "deviceInfo/" + name);
      return tableRow(heading(title), {"true": "yes", "false": "no"}[value] ?? value);
    }));
  },
};

byId("password-form").onsubmit = event => {
  event.preventDefault();
  const password = byId("new-password").value;
  if (password !== byId("again-password").value) {
    say("The two passwords differ.", true);
    return;
  }
  const coded = btoa(String.fromCharCode(...new TextEncoder().encode(password)));
  act(async () => {
    await call("ModifyPassword", configDocument(nest({"userPassword/oldPassword": coded, "userPassword/password": coded})));
    setLogin(login.user, password);
    rememberLogin(login.user, password);
    event.target.reset();
  }, "The password is changed.");
};
byId("logout").onclick = () => {
  forgetLogin();
  location.reload();
};
byId("reboot").onclick = () => {
  if (confirm("Restart the camera's services? Players are cut off for a moment.")) {
    act(() => call("Reboot"), "The camera restarts.");
  }
};
