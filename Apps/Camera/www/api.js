// The camera's XML API: requests, answers, and what went wrong in words.
"use strict";

const byId = id => document.getElementById(id);

const ERRORS = {
  "1": "The camera has no such function.",
  "3": "The camera does not accept one of these values.",
  "4": "The camera failed to do that.",
};

class NotAllowed extends Error {}

const login = {user: "", authorization: ""};

// The Authorization header is made here: the browser's own dialog would come again and again for a page that is
// itself free to read.
function setLogin(user, password) {
  const bytes = new TextEncoder().encode(user + ":" + password);
  login.user = user;
  login.authorization = "Basic " + btoa(String.fromCharCode(...bytes));
}

async function request(command, body) {
  try {
    return await fetch(new URL("/" + command, location.origin), {
      method: body === undefined ? "GET" : "POST", body, credentials: "omit", cache: "no-store",
      headers: {"Authorization": login.authorization}});
  } catch {
    throw new Error("The camera cannot be reached.");
  }
}

// Asks the camera something. Returns the answer as a document.
async function call(command, body) {
  const answer = await request(command, body);
  if (answer.status === 401) {
    throw new NotAllowed("The user name or the password is wrong.");
  }
  const parsed = new DOMParser().parseFromString(await answer.text(), "text/xml");
  if (!answer.ok) {
    throw new Error(ERRORS[parsed.documentElement.getAttribute("errorCode")] || "The camera did not answer " + command + ".");
  }
  if (parsed.querySelector("parsererror")) {
    throw new Error("The camera's answer to " + command + " cannot be read.");
  }
  return parsed;
}

// The element at a path below the root, like "image/WDR/switch"; null when there is none.
function find(root, path) {
  return path.split("/").reduce((element, name) =>
    element && [...element.children].find(child => child.localName === name), root.documentElement || root) || null;
}

const textOf = (root, path) => (find(root, path) || {textContent: ""}).textContent.trim();
const itemsOf = (root, path) => {
  const list = find(root, path);
  return list ? [...list.children].filter(child => child.localName === "item") : [];
};

const escapeXml = text => String(text).replace(/[<>&"]/g, c => "&#" + c.charCodeAt(0) + ";");
const element = (name, content, attributes = "") => `<${name}${attributes}>${content}</${name}>`;

// Values by path as one document: {"time/X": 1, "time/Y": 2} is <time><X>1</X><Y>2</Y></time>.
function nest(values) {
  const tree = {};
  for (const [path, value] of Object.entries(values)) {
    const names = path.split("/");
    const last = names.pop();
    names.reduce((node, name) => node[name] ??= {}, tree)[last] = escapeXml(value);
  }
  const write = node => Object.entries(node).map(([name, value]) =>
    element(name, typeof value === "object" ? write(value) : value)).join("");
  return write(tree);
}

const configDocument = content => '<?xml version="1.0" encoding="UTF-8"?>' + element("config", content, ' version="1.0"');

// The camera's own request: simulated sensors, outputs, and where the head looks.
async function control(command) {
  return call("camera", "ORBIT-700 " + command);
}

// Shows the next snapshot in an image.
async function showSnapshot(image) {
  const answer = await request("GetSnapshot");
  if (answer.status === 401) {
    throw new NotAllowed("The user name or the password is wrong.");
  }
  if (!answer.ok) {
    throw new Error("The camera gives no picture.");
  }
  const address = URL.createObjectURL(await answer.blob());
  await new Promise((done, failed) => {
    image.onload = done;
    image.onerror = () => failed(new Error("The picture cannot be shown."));
    image.src = address;
  });
  URL.revokeObjectURL(address);
}

// The next snapshot for a view that may be left meanwhile: then nobody hears of a failure.
const showSnapshotWhile = (isShown, image) => showSnapshot(image).catch(problem => {
  if (isShown()) {
    throw problem;
  }
});

function say(text, isProblem) {
  byId("status").textContent = text;
  byId("status").className = isProblem ? "problem" : "";
}

// Runs what a person asked for and tells in words how it went.
async function act(work, done) {
  try {
    await work();
    if (done) {
      say(done);
    }
    return true;
  } catch (problem) {
    say(problem.message, true);
    if (problem instanceof NotAllowed) {
      showLogin();
    }
    return false;
  }
}
