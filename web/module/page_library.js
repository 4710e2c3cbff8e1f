// What the module takes from the page.
mergeInto(LibraryManager.library, {
  page_read: function(offset, to, count) { return Module['pageRead'](offset, to, count); },
});
