// The operator's commands: keeps the token, and sends them one after the other.
import { byId, now, setText } from "/basics.js";

const commandTimeoutMs = 5000;
const lateCommandMs = 1500;        // a command that had to wait for longer than this would surprise
export const doubleTapMs = 400;
const tokenKey = "korvia-token", tokenForm = /^[A-Za-z0-9_-]{22}$/;

// ---- token ----

let token = "";
export const isUnlocked = () => token !== "";
const dialog = byId("token-dialog"), tokenField = byId("token-field");

// A browser may refuse storage; then the token lasts as long as the page.
function storage(use) {
  try { return use(localStorage); } catch { return null; }
}

function setToken(text) {
  token = text;
  storage(kept => text ? kept.setItem(tokenKey, text) : kept.removeItem(tokenKey));
  showToken();
}

function showToken() {
  document.body.classList.toggle("locked", !token);
  setText(byId("token-button"), token ? "Unlocked" : "Locked");
  byId("token-button").title = token ? "Commands are unlocked" : "Commands need the token";
}

// The address bar must not show the token, and a bookmark must not keep it.
function takeTokenFromAddress() {
  const text = location.hash.slice(1);
  if (!text) return;
  history.replaceState(null, "", location.pathname + location.search);
  if (tokenForm.test(text)) setToken(text);
}

function askForToken(reason) {
  setText(byId("token-reason"), reason);
  tokenField.value = "";
  byId("token-forget").hidden = !token;
  if (!dialog.open) dialog.showModal();
  tokenField.focus();
}

export function startToken() {
  token = storage(kept => kept.getItem(tokenKey)) || "";
  showToken();
  takeTokenFromAddress();
  addEventListener("hashchange", takeTokenFromAddress);
  byId("token-button").addEventListener("click", () => askForToken(""));
  byId("token-cancel").addEventListener("click", () => dialog.close());
  byId("token-forget").addEventListener("click", () => {
    setToken("");
    dialog.close();
  });
  dialog.querySelector("form").addEventListener("submit", event => {
    event.preventDefault();
    // Whoever pastes the whole address means the token in it.
    const text = tokenField.value.trim().replace(/^.*#/, "");
    if (!tokenForm.test(text)) {
      setText(byId("token-reason"), "A token has 22 letters, digits, - or _.");
      return tokenField.focus();
    }
    setToken(text);
    dialog.close();
  });
}

// ---- messages ----

let messageTimer = 0;
export function say(text) {
  const message = byId("message");
  message.textContent = text;
  message.hidden = false;
  clearTimeout(messageTimer);
  messageTimer = setTimeout(() => { message.hidden = true; }, 5000);
}

// ---- commands ----

const refusals = {
  403: "The console takes no commands from this address.",
  404: "The console does not know this command or channel.",
  503: "The console is not ready. Try again.",
};
let commandChain = Promise.resolve();
let failedMs = -Infinity;
const lockedUntilMs = new Map();

// Commands go out one after the other, so that "select, cut" reaches the console in this order, and when the
// selection fails nothing is cut. A group takes no second command for the time of a double tap. Tells whether it
// takes this one.
export function command(path, button, group) {
  if (!token) askForToken("Commands need the token.");
  if (!token || now() < (lockedUntilMs.get(group) || 0)) return false;
  lockedUntilMs.set(group, Infinity);
  button.classList.add("pending");
  const tappedMs = now();
  commandChain = commandChain.then(async () => {
    if (tappedMs > failedMs && !await send(path, tappedMs)) failedMs = now();
    lockedUntilMs.set(group, tappedMs + doubleTapMs);
    button.classList.remove("pending");
  });
  return true;
}

// True when the console has taken the command; what went wrong is told.
async function send(path, tappedMs) {
  if (now() - tappedMs > lateCommandMs) {
    say("The console is slow. The command was not sent.");
    return false;
  }
  const stop = new AbortController();
  const timer = setTimeout(() => stop.abort(), commandTimeoutMs);
  const sentToken = token;
  try {
    const headers = { Authorization: "Bearer " + sentToken };
    const reply = await fetch(path, { method: "POST", headers, signal: stop.signal });
    if (reply.ok) return true;
    if (reply.status !== 401) {
      say(refusals[reply.status] || "The console refused the command (" + reply.status + ").");
      return false;
    }
    if (token === sentToken) setToken("");
    askForToken("The console refused the token. Type the one that korvia printed at its start.");
  } catch {
    say("No answer from the console. Look whether the command has run before you repeat it.");
  } finally {
    clearTimeout(timer);
  }
  return false;
}
