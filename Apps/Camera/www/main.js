// The page as a whole: the login and the way between its views.
"use strict";

const VIEWS = [
  ["live", "Live", liveView],
  ["image", "Image", imageView],
  ["stream", "Streams", streamView],
  ["overlay", "Text and masks", overlayView],
  ["ptz", "PTZ", ptzView],
  ["motion", "Motion", motionView],
  ["alarm", "Alarms", alarmView],
  ["records", "Recordings", recordsView],
  ["network", "Network", networkView],
  ["system", "System", systemView],
];

let shown = null;

function showLogin() {
  leaveView();
  byId("views").hidden = true;
  byId("login").hidden = false;
  byId("user").focus();
}

function leaveView() {
  if (shown) {
    byId(shown[0]).hidden = true;
    shown[2].hide?.();
  }
  shown = null;
}

async function showView() {
  if (byId("views").hidden) {
    return;
  }
  leaveView();
  const wanted = VIEWS.find(([name]) => "#/" + name === location.hash) || VIEWS[0];
  shown = wanted;
  for (const link of byId("views").children) {
    link.ariaCurrent = link.hash === "#/" + wanted[0] ? "page" : null;
  }
  byId(wanted[0]).hidden = false;
  document.body.dataset.loaded = "";
  if (await act(wanted[2].show)) {
    document.body.dataset.loaded = wanted[0];
  }
}

// The password is asked for once: it is kept for as long as this tab lives.
function rememberLogin(user, password) {
  sessionStorage.setItem("login", JSON.stringify([user, password]));
}

function forgetLogin() {
  sessionStorage.removeItem("login");
}

async function enter(user, password) {
  setLogin(user, password);
  try {
    const info = await call("GetDeviceInfo");
    byId("title").textContent = textOf(info, "deviceInfo/model") || "Network camera";
    document.title = byId("title").textContent;
    systemView.showDevice(info);
    rtsp.port = textOf(await call("GetPortConfig"), "port/rtspPort") || rtsp.port;
    rememberLogin(user, password);
    byId("login").hidden = true;
    byId("views").hidden = false;
    say("Logged in as " + user + ".");
    await showView();
  } catch (problem) {
    forgetLogin();
    showLogin();
    say(problem.message, true);
  }
}

byId("views").replaceChildren(...VIEWS.map(([name, title]) => make("a", {href: "#/" + name}, title)));
window.onhashchange = showView;
byId("login-form").onsubmit = event => {
  event.preventDefault();
  enter(byId("user").value, byId("password").value);
};

// A name and a password in the page's own address are used at once.
const address = new URL(document.baseURI);
const kept = JSON.parse(sessionStorage.getItem("login"));
if (address.username) {
  enter(decodeURIComponent(address.username), decodeURIComponent(address.password));
} else if (kept) {
  enter(...kept);
} else {
  showLogin();
  say("Log in to see the camera.");
}
