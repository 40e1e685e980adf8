// What the attack pages share: room to click on what they try, and a link that certainly leads out.
const style = document.createElement('style');
style.textContent = '#first, #try, a { display: block; width: 200px; height: 60px; margin: 4px }';
document.documentElement.append(style);
addEventListener('DOMContentLoaded', () => {
  if (window === top) {
    document.body.insertAdjacentHTML('beforeend', '<a id=control href=app://control>control</a>');
  }
});

// A frame of the same server, which by its other name is of another origin.
function otherFrame(path, attributes = '') {
  const url = new URL(path, location);
  url.hostname = 'localhost';
  document.write(`<iframe id=try style='width: 100%; height: 120px; border: 0' ${attributes} src=${url}></iframe>`);
}

// Wants another application opened every 20 ms, for a second.
function flood() {
  let left = 50;
  window.tried = false;
  const timer = setInterval(() => {
    if (--left === 0) {
      clearInterval(timer);
      window.tried = true;
    } else {
      location = 'redirect-mail.http';
    }
  }, 20);
}

// So late that the engine forgets what has led to it.
function later(action, count = 3) {
  setTimeout(() => count > 0 ? later(action, count - 1) : action());
}
