// The operator's page: follows what the console tells, and starts the other parts.
import { byId, now, object, setText, sleep } from "/basics.js";
import { startToken } from "/commands.js";
import { announceTake, showLevels, showLink, showOutputEvent, showTally, startDesk } from "/desk.js";
import { followStatus } from "/figures.js";

const silentLimitMs = 12000;       // the console is heard at least every 5 s

// ---- connection ----

const linkWords = {
  connecting: "connecting", up: "connected", retry: "reconnecting", down: "no answer from the console",
};
let link = "connecting";
let consoleEnded = false;
let heardMs = 0;

function setLink(state) {
  link = state;
  byId("link").dataset.state = state;
  setText(byId("link"), consoleEnded && state !== "up" ? "the console has ended, trying again" : linkWords[state]);
  document.body.classList.toggle("lost", state !== "up");
  showLink(state);
}

// The stream is read by hand, because an EventSource tells neither of the comments that keep it alive nor of all
// errors.
async function readEvents(stop) {
  const watch = setInterval(() => { if (now() - heardMs > silentLimitMs) stop.abort(); }, 1000);
  try {
    const path = document.hidden ? "/events" : "/events?levels=1";
    const reply = await fetch(path, { cache: "no-store", signal: stop.signal });
    if (!reply.ok || !reply.body) throw new Error("status " + reply.status);
    const reader = reply.body.pipeThrough(new TextDecoderStream()).getReader();
    let rest = "";
    for (;;) {
      const { value, done } = await reader.read();
      if (done) return;
      heardMs = now();
      const blocks = (rest + value).split(/\r?\n\r?\n/);
      rest = blocks.pop();
      for (const block of blocks) handleEvent(block);
      if (link !== "up" && !consoleEnded) setLink("up");
    }
  } finally {
    clearInterval(watch);
    stop.abort();
  }
}

const handlers = {
  tally: showTally,
  take: announceTake,
  outputs: showOutputEvent,
  levels: levels => { if (!document.hidden) showLevels(levels); },
  bye: () => { consoleEnded = true; setLink("retry"); },
};

function handleEvent(block) {
  let name = "", data = "";
  for (const line of block.split(/\r?\n/)) {
    if (line.startsWith("event:")) name = line.slice(6).trim();
    else if (line.startsWith("data:")) data += line.slice(5);
  }
  if (!Object.hasOwn(handlers, name)) return;
  try {
    handlers[name](object(JSON.parse(data)));
  } catch (error) {
    console.warn("event " + name + " is not understood", error);
  }
}

// Nobody sees the levels of a hidden page, so the stream is asked for anew without them, and with them when the page
// is seen again. Such a change is no loss of the connection.
async function readEventsUntilSeenOtherwise() {
  const stop = new AbortController();
  let isOtherwise = false;
  document.addEventListener("visibilitychange", () => {
    if (consoleEnded) return;
    isOtherwise = true;
    stop.abort();
  }, { signal: stop.signal });
  try { await readEvents(stop); } catch { /* told by the link */ }
  return isOtherwise;
}

async function followEvents() {
  for (let delayMs = 1000; ; delayMs = Math.min(delayMs * 2, 5000)) {
    heardMs = now();
    while (await readEventsUntilSeenOtherwise());
    const wasUp = link === "up" || consoleEnded;
    setLink(wasUp ? "retry" : "down");
    if (wasUp) delayMs = 1000;
    await sleep(delayMs);
    consoleEnded = false;
  }
}

startToken();
startDesk();
followEvents();
followStatus();
