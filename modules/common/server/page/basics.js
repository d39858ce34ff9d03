// What every part of the page uses: values that may be missing, elements and requests.
export const byId = id => document.getElementById(id);
export const now = () => performance.now();
export const sleep = ms => new Promise(done => setTimeout(done, ms));
export const isObject = value => value !== null && typeof value === "object" && !Array.isArray(value);
export const isNumber = value => typeof value === "number" && Number.isFinite(value);
export const object = value => isObject(value) ? value : {};
export const objects = value => Array.isArray(value) ? value.filter(isObject) : [];
export const words = (value, otherwise = "") =>
  typeof value === "string" || isNumber(value) ? String(value) : otherwise;
export const fixed = (value, digits, unit = "") => isNumber(value) ? value.toFixed(digits) + unit : "\u2013";

// Every text reaches the page as a text node, so that no value can become markup.
export function element(name, className = "", text) {
  const made = document.createElement(name);
  if (className) made.className = className;
  if (text !== undefined) made.textContent = text;
  return made;
}

// Nothing is written that stands there already, so that a selection stays and screen readers are not disturbed.
export function setText(target, text) {
  if (target.textContent !== text) target.textContent = text;
}

export function clock(seconds) {
  const whole = Math.max(0, Math.floor(isNumber(seconds) ? seconds : 0));
  const two = n => String(n).padStart(2, "0");
  return two(Math.floor(whole / 3600)) + ":" + two(Math.floor(whole / 60) % 60) + ":" + two(whole % 60);
}

// ---- requests ----

const untilHidden = new Set();
document.addEventListener("visibilitychange", () => {
  if (!document.hidden) return;
  for (const stop of untilHidden) stop.abort();
});

export async function untilVisible() {
  const change = () => new Promise(done => document.addEventListener("visibilitychange", done, { once: true }));
  while (document.hidden) await change();
}

// For what is of use only while somebody looks: ends when the page is hidden.
export async function load(path, as, timeoutMs = 10000) {
  const stop = new AbortController();
  const timer = setTimeout(() => stop.abort(), timeoutMs);
  untilHidden.add(stop);
  try {
    const reply = await fetch(path, { cache: "no-store", signal: stop.signal });
    const answer = { status: reply.status, number: reply.headers.get("X-Korvia-Picture"), beganMs: now() };
    return { ...answer, body: reply.ok ? await reply[as]() : null };
  } finally {
    clearTimeout(timer);
    untilHidden.delete(stop);
  }
}
